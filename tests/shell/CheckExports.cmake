# cmake -DNM=nm -DLIBRARY=libName.so -DEXPECTED=list -P CheckExports.cmake
# Fails when the library has a symbol that is unique to the process, or offers other names of ours
# than the list holds. What the standard library's own templates leave behind does not count.

execute_process(
  COMMAND "${NM}" --dynamic --defined-only --demangle "${LIBRARY}"
  OUTPUT_VARIABLE symbols
  COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")

set(offered "")
foreach(symbol IN LISTS symbols)
  if(NOT symbol MATCHES "^[0-9a-f]+ ([A-Za-z]) (.*)$")
    continue()
  endif()
  set(kind "${CMAKE_MATCH_1}")
  set(name "${CMAKE_MATCH_2}")
  if(kind STREQUAL "u")
    message(FATAL_ERROR "'${name}' is unique to the process: the library would stay for ever")
  endif()
  if(name MATCHES "(^| )std::")
    continue()
  endif()
  if(kind STREQUAL "T" OR name MATCHES "^([a-z ]+ for )?(KVL|MRB|kvl)")
    list(APPEND offered "${name}")
  endif()
endforeach()

file(STRINGS "${EXPECTED}" expected)
list(SORT offered)
list(SORT expected)
if(NOT offered STREQUAL expected)
  message(FATAL_ERROR "offered: ${offered}\nexpected: ${expected}")
endif()
