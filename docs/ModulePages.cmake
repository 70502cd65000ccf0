# cmake -DPROGRAM=kvl -DEMULATOR=list -DPAGES=folder -DSCRATCH=folder [-DUPDATE=ON] -P ModulePages.cmake
# Fails unless the pages of the folder are those that the program makes of the shipped modules;
# with UPDATE, makes them so.

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${SCRATCH}")
set(ENV{KVLCodeEnv_Modules} "")
execute_process(
  COMMAND ${EMULATOR} "${PROGRAM}" -c "export --format md --output \"${SCRATCH}\""
  OUTPUT_QUIET
  COMMAND_ERROR_IS_FATAL ANY)

file(GLOB made RELATIVE "${SCRATCH}" "${SCRATCH}/*.md")
file(GLOB kept RELATIVE "${PAGES}" "${PAGES}/*.md")
if(NOT made)
  message(FATAL_ERROR "${PROGRAM} made no pages")
endif()
set(stale "")
foreach(page IN LISTS made)
  file(READ "${SCRATCH}/${page}" new)
  set(old "")
  if(EXISTS "${PAGES}/${page}")
    file(READ "${PAGES}/${page}" old)
  endif()
  if(new STREQUAL old)
    continue()
  endif()
  list(APPEND stale "${page}")
  if(UPDATE)
    file(WRITE "${PAGES}/${page}" "${new}")
  endif()
endforeach()
foreach(page IN LISTS kept)
  if(page IN_LIST made)
    continue()
  endif()
  list(APPEND stale "${page}")
  if(UPDATE)
    file(REMOVE "${PAGES}/${page}")
  endif()
endforeach()

list(JOIN stale " " stale)
if(UPDATE AND stale)
  message(STATUS "docs/modules: wrote ${stale}")
elseif(stale)
  message(FATAL_ERROR "out of date in docs/modules: ${stale}; ./dev docs brings them up to date")
endif()
