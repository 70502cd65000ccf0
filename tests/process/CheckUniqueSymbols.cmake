# cmake -DNM=nm -DFOLDER=folder -P CheckUniqueSymbols.cmake
# Fails when a library in the folder has a symbol that is unique to the process: the platform's
# loader would never unmap it.

file(GLOB libraries "${FOLDER}/*.so")
if(NOT libraries)
  message(FATAL_ERROR "no library in ${FOLDER}")
endif()
foreach(library IN LISTS libraries)
  execute_process(
    COMMAND "${NM}" --dynamic "${library}"
    OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]* u [^\n]*" unique "${symbols}")
  if(unique)
    list(JOIN unique "\n" unique)
    message(SEND_ERROR "${library} has unique symbols:\n${unique}")
  endif()
endforeach()
