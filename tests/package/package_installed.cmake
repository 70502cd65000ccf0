# Installs the build to a folder of its own and uses it from there.

include("${CMAKE_CURRENT_LIST_DIR}/PackageTest.cmake")
file(REMOVE_RECURSE "${WORK}")
set(prefix "${WORK}/prefix")
run_step("${CMAKE_COMMAND}" --install "${KVL_BUILD}" --config "${KVL_CONFIG}" --prefix "${prefix}")

set(expected "")
foreach(folder IN ITEMS include kit)
  file(GLOB headers RELATIVE "${KVL_SOURCE}/${folder}" "${KVL_SOURCE}/${folder}/*.h")
  list(APPEND expected ${headers})
endforeach()
list(SORT expected)
file(GLOB installed RELATIVE "${prefix}/include/KVLKernel" "${prefix}/include/KVLKernel/*")
list(SORT installed)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed headers: ${installed}\ninstead of: ${expected}")
endif()

# accepts_version(MAJOR MINOR RESULT): whether find_package would take this package for that version.
function(accepts_version major minor result)
  set(PACKAGE_FIND_VERSION "${major}.${minor}")
  set(PACKAGE_FIND_VERSION_MAJOR "${major}")
  set(PACKAGE_FIND_VERSION_MINOR "${minor}")
  include("${prefix}/${KVL_LIBDIR}/cmake/KVLKernel/KVLKernelConfigVersion.cmake")
  set(${result} "${PACKAGE_VERSION_COMPATIBLE}" PARENT_SCOPE)
endfunction()

string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" unused "${KVL_VERSION}")
set(major "${CMAKE_MATCH_1}")
set(minor "${CMAKE_MATCH_2}")
math(EXPR nextMinor "${minor} + 1")
accepts_version("${major}" "${minor}" isAccepted)
accepts_version("${major}" "${nextMinor}" isNextAccepted)
if(NOT isAccepted OR isNextAccepted)
  message(FATAL_ERROR "the package must serve its own minor version and no other")
endif()

# The project's text lies where it can see nothing of this one's.
file(COPY "${KVL_SOURCE}/docs/examples/greeting" DESTINATION "${WORK}")
build_project("${WORK}/greeting" "${WORK}/build" "-DCMAKE_PREFIX_PATH=${prefix}")
run_greet("${WORK}/build" "${prefix}/bin")

file(GLOB kvl "${prefix}/bin/kvl" "${prefix}/bin/kvl.exe")
run_program("${kvl}" "7.75\n" -c "call math/add 3.5 4.25")
# What shells and `man` look for lies where they look.
if(kvl MATCHES "/kvl$")
  foreach(file IN ITEMS man/man1/kvl.1 bash-completion/completions/kvl zsh/site-functions/_kvl
                        fish/vendor_completions.d/kvl.fish)
    if(NOT EXISTS "${prefix}/share/${file}")
      message(FATAL_ERROR "share/${file} is not installed")
    endif()
  endforeach()
endif()
