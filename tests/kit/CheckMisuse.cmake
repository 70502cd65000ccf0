# cmake -DCOMPILER=g++ -DINCLUDE=folder,folder -DSOURCE=file.cpp -DACCEPTED=file.cpp -P CheckMisuse.cmake
# The last line of SOURCE is a mistake. Fails unless the compiler accepts SOURCE without it, and
# refuses it with the words that its first line, a comment, holds.

string(REPLACE "," ";-I" INCLUDE "-I${INCLUDE}")

function(compile source)
  execute_process(
    COMMAND "${COMPILER}" -std=c++17 -fsyntax-only -Wno-unused ${INCLUDE} "${source}"
    RESULT_VARIABLE result
    ERROR_VARIABLE messages)
  set(result "${result}" PARENT_SCOPE)
  set(messages "${messages}" PARENT_SCOPE)
endfunction()

file(READ "${SOURCE}" text)
if(NOT text MATCHES "^// ([^\n]+)\n")
  message(FATAL_ERROR "${SOURCE} has no words to look for in its first line")
endif()
set(expected "${CMAKE_MATCH_1}")

string(REGEX REPLACE "[^\n]+\n$" "" accepted "${text}")
file(WRITE "${ACCEPTED}" "${accepted}")
compile("${ACCEPTED}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "without its last line, ${SOURCE} is refused:\n${messages}")
endif()

compile("${SOURCE}")
if(result EQUAL 0)
  message(FATAL_ERROR "${SOURCE} is accepted")
endif()
string(FIND "${messages}" "${expected}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${SOURCE} is refused, but not with '${expected}':\n${messages}")
endif()
