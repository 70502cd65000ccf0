# cmake -DNM=nm -DREADELF=readelf -DLIBRARY=libName.so -P CheckRelocations.cmake
# Fails when the loader has to look up by name a function that the library itself has. Type
# descriptions are looked up by name, since all libraries are to have the same.

cmake_minimum_required(VERSION 3.25)

execute_process(
  COMMAND "${NM}" --dynamic --defined-only "${LIBRARY}"
  OUTPUT_VARIABLE symbols
  COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [TWi] [^\n]+" functions "${symbols}")
list(TRANSFORM functions REPLACE "^ . " "")
# Tables of virtual functions and type descriptions may be weak too.
list(FILTER functions EXCLUDE REGEX "^_ZT[VIS]")
if(NOT functions)
  message(FATAL_ERROR "${LIBRARY} has no function")
endif()

execute_process(
  COMMAND "${READELF}" --relocs --wide "${LIBRARY}"
  OUTPUT_VARIABLE relocations
  COMMAND_ERROR_IS_FATAL ANY)
# offset, information, type, value of the symbol, name, "+ addend"
string(REGEX MATCHALL "[0-9a-f]+ +[0-9a-f]+ R_[A-Z0-9_]+ +[0-9a-f]+ [^ \n]+" named "${relocations}")
list(TRANSFORM named REPLACE "^.* " "")
list(TRANSFORM named REPLACE "@.*$" "")
if(NOT named)
  message(FATAL_ERROR "${LIBRARY} looks up no name at all")
endif()

set(own "")
foreach(name IN LISTS named)
  if(name IN_LIST functions)
    list(APPEND own ${name})
  endif()
endforeach()
list(REMOVE_DUPLICATES own)
if(own)
  list(JOIN own "\n  " own)
  message(FATAL_ERROR "looked up by name, though the library has them:\n  ${own}")
endif()
