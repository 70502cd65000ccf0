# cmake -DEXPECTED=file -P CompareOutput.cmake -- program argument...
# Fails unless the program ends with 0 and what it writes to standard output is the file's text.

set(command "")
set(separatorSeen FALSE)
foreach(index RANGE 1 ${CMAKE_ARGC})
  if(separatorSeen)
    list(APPEND command "${CMAKE_ARGV${index}}")
  elseif("${CMAKE_ARGV${index}}" STREQUAL "--")
    set(separatorSeen TRUE)
  endif()
endforeach()

execute_process(
  COMMAND ${command}
  OUTPUT_VARIABLE output
  RESULT_VARIABLE result)
# As on Windows.
string(REPLACE "\r\n" "\n" output "${output}")
file(READ "${EXPECTED}" expected)
if(NOT result STREQUAL "0")
  message(FATAL_ERROR "ended with ${result}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "standard output is\n${output}\ninstead of\n${expected}")
endif()
