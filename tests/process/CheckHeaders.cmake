# cmake -DCOMPILER=g++ -DSTANDARD=17 -DINCLUDE=folder,folder -DHEADERS=a.h,b.h -DSOURCE=file.cpp
#       -P CheckHeaders.cmake
# Fails unless each header compiles alone, also when it is included twice, without a warning.

string(REPLACE "," ";" HEADERS "${HEADERS}")
string(REPLACE "," ";-I" INCLUDE "-I${INCLUDE}")
foreach(header IN LISTS HEADERS)
  file(WRITE "${SOURCE}" "#include \"${header}\"\n#include \"${header}\"\n")
  execute_process(
    COMMAND
      "${COMPILER}" "-std=c++${STANDARD}" -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow
      -Wconversion -Werror ${INCLUDE} "${SOURCE}"
    RESULT_VARIABLE result
    ERROR_VARIABLE messages)
  if(NOT result EQUAL 0)
    message(SEND_ERROR "${header}:\n${messages}")
  endif()
endforeach()
