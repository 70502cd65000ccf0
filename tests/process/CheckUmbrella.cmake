# cmake -DINCLUDE=folder -DHEADERS=a.h,b.h -P CheckUmbrella.cmake
# Fails unless KVLKernel.h includes every other header of the folder, in order, and the build
# installs them all.

file(GLOB present RELATIVE "${INCLUDE}" "${INCLUDE}/*.h")
list(SORT present COMPARE STRING)

string(REPLACE "," ";" listed "${HEADERS}")
if(NOT listed STREQUAL present)
  message(SEND_ERROR "the build lists\n${listed}\ninstead of\n${present}")
endif()

file(STRINGS "${INCLUDE}/KVLKernel.h" included REGEX "^#include ")
list(TRANSFORM included REPLACE "^#include \"(.*)\"$" "\\1")
list(REMOVE_ITEM present KVLKernel.h)
if(NOT included STREQUAL present)
  message(SEND_ERROR "KVLKernel.h includes\n${included}\ninstead of\n${present}")
endif()
