# cmake -DCOMPILER=g++ -DINCLUDE=folder,folder -DSOURCES=a.cpp,b.cpp -DWORK=folder -P CheckMisuse.cmake
# The last line of each source is a mistake. Fails unless the compiler accepts the source without it,
# and refuses it with the words that its first line, a comment, holds.

string(REPLACE "," ";" SOURCES "${SOURCES}")
string(REPLACE "," ";-I" INCLUDE "-I${INCLUDE}")

# The kit is compiled once for all of them.
set(flags -std=c++17 -Wno-unused)
file(MAKE_DIRECTORY "${WORK}")
file(WRITE "${WORK}/Kit.h" "#include \"KVLKit.h\"\n")
if(COMPILER MATCHES "clang")
  set(compiled "${WORK}/Kit.h.pch")
  set(use -include-pch "${compiled}")
else()
  set(compiled "${WORK}/Kit.h.gch")
  set(use -include "${WORK}/Kit.h")
endif()
execute_process(COMMAND "${COMPILER}" ${flags} ${INCLUDE} -x c++-header "${WORK}/Kit.h" -o "${compiled}"
                COMMAND_ERROR_IS_FATAL ANY)

function(compile source)
  execute_process(
    COMMAND "${COMPILER}" ${flags} -fsyntax-only ${use} ${INCLUDE} "${source}"
    RESULT_VARIABLE result
    ERROR_VARIABLE messages)
  set(result "${result}" PARENT_SCOPE)
  set(messages "${messages}" PARENT_SCOPE)
endfunction()

foreach(source IN LISTS SOURCES)
  file(READ "${source}" text)
  if(NOT text MATCHES "^// ([^\n]+)\n")
    message(SEND_ERROR "${source} has no words to look for in its first line")
  endif()
  set(expected "${CMAKE_MATCH_1}")

  string(REGEX REPLACE "[^\n]+\n$" "" accepted "${text}")
  file(WRITE "${WORK}/Accepted.cpp" "${accepted}")
  compile("${WORK}/Accepted.cpp")
  if(NOT result EQUAL 0)
    message(SEND_ERROR "without its last line, ${source} is refused:\n${messages}")
  endif()

  compile("${source}")
  string(FIND "${messages}" "${expected}" position)
  if(result EQUAL 0)
    message(SEND_ERROR "${source} is accepted")
  elseif(position EQUAL -1)
    message(SEND_ERROR "${source} is refused, but not with '${expected}':\n${messages}")
  endif()
endforeach()
list(LENGTH SOURCES count)
message(STATUS "${count} mistakes are refused")
