# cmake -DNM=nm -DLIBRARY=libName.so -DEXPORTS=file -P CheckExports.cmake
# Fails unless the names that the library exports are those in the file: one a line, demangled,
# sorted by byte, each once. Kinds and counts are left out, since compilers differ in them: in how
# many constructors one declaration becomes, and in where tables of virtual functions lie.

execute_process(
  COMMAND "${NM}" --dynamic --defined-only --demangle "${LIBRARY}"
  OUTPUT_VARIABLE symbols
  COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "(^|\n)[0-9a-f]+ [A-Za-z] " "\\1" symbols "${symbols}")
string(STRIP "${symbols}" symbols)
string(REPLACE "\n" ";" exported "${symbols}")
list(REMOVE_DUPLICATES exported)
list(SORT exported COMPARE STRING)

file(STRINGS "${EXPORTS}" expected)
set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
set(surplus ${exported})
list(REMOVE_ITEM surplus ${expected})
if(missing OR surplus)
  list(JOIN missing "\n  " missing)
  list(JOIN surplus "\n  " surplus)
  message(FATAL_ERROR "not exported:\n  ${missing}\nexported, but not listed:\n  ${surplus}")
endif()
if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "${EXPORTS} is not sorted by byte, or lists a name twice")
endif()
