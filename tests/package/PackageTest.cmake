# Steps of the package tests. Each ends the test when it fails.

cmake_minimum_required(VERSION 3.25)

function(run_step)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
endfunction()

# build_project(SOURCE BUILD configure-argument...)
function(build_project source build)
  run_step("${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}" -C "${SETTINGS}"
           ${ARGN})
  run_step("${CMAKE_COMMAND}" --build "${build}" --config "${KVL_CONFIG}" --target greet
           KVLCodeEnv_Greeting)
endfunction()

# The compiler's own libraries lie in the build folder only.
if(EMULATOR)
  set(ENV{WINEPATH} "${KVL_BUILD}/bin")
endif()

# run_program(PROGRAM EXPECTED argument...): the program must succeed and write that text.
function(run_program program expected)
  execute_process(COMMAND ${EMULATOR} "${program}" ${ARGN} OUTPUT_VARIABLE output
                  RESULT_VARIABLE result)
  string(REPLACE "\r\n" "\n" output "${output}")
  if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
    message(FATAL_ERROR "${program} ended with ${result} and wrote:\n${output}")
  endif()
endfunction()

# run_greet(FOLDER library-folder...): runs the project's program, which loads the project's module.
function(run_greet folder)
  # Where the platform searches libraries beside the program, they must lie there.
  foreach(libraries IN LISTS ARGN)
    file(GLOB dlls "${libraries}/*.dll")
    file(COPY ${dlls} DESTINATION "${folder}")
  endforeach()
  set(ENV{LD_LIBRARY_PATH} "${folder}:$ENV{LD_LIBRARY_PATH}")
  set(ENV{KVLCodeEnv_Modules} KVLCodeEnv_Greeting)
  file(GLOB program "${folder}/greet" "${folder}/greet.exe")
  file(READ "${KVL_SOURCE}/docs/examples/greeting/host.out" expected)
  run_program("${program}" "${expected}")
endfunction()
