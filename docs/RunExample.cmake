# cmake -DPROGRAM=program [-DARGUMENT=text] -DEXPECTED=text.out [-DEMULATOR=wine] -P RunExample.cmake
# Fails unless the program succeeds and writes exactly the expected text to standard output.

cmake_minimum_required(VERSION 3.25)

execute_process(
  COMMAND ${EMULATOR} "${PROGRAM}" ${ARGUMENT}
  OUTPUT_VARIABLE output
  RESULT_VARIABLE result)
string(REPLACE "\r\n" "\n" output "${output}")
file(READ "${EXPECTED}" expected)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result} after writing:\n${output}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} wrote:\n${output}\ninstead of:\n${expected}")
endif()
