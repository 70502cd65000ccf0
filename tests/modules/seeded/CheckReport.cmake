# cmake -DEXPECTED=file -P CheckReport.cmake -- kvl
# Fails unless kvl's `check`, with the seeded module beside it, writes the file's text and answers
# that there are anomalies. The order is that of the tree, in which the other modules come first.

set(command ${CMAKE_ARGV5} ${CMAKE_ARGV6})
set(ENV{KVLCodeEnv_Modules} KVLCodeEnv_Seeded)
execute_process(
  COMMAND ${command} -c check
  OUTPUT_VARIABLE output
  RESULT_VARIABLE result)
# As on Windows.
string(REPLACE "\r\n" "\n" output "${output}")
file(READ "${EXPECTED}" expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "standard output is\n${output}\ninstead of\n${expected}")
endif()
if(NOT result STREQUAL "1")
  message(FATAL_ERROR "ended with ${result} instead of 1")
endif()
