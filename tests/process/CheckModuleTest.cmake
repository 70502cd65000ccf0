# cmake -DCHECK=KVLCheckModule.cmake -DNM=nm -DLIBRARY=libName.so -DCOPY=file -DMESSAGE=regex
#       -P CheckModuleTest.cmake
# Fails unless the check of a module's build refuses the library with the message, and takes it
# away; with an empty message, unless the check accepts the library.

file(COPY_FILE "${LIBRARY}" "${COPY}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" "-DNM=${NM}" "-DMODULE=${COPY}" -P "${CHECK}"
  RESULT_VARIABLE result
  ERROR_VARIABLE messages)
if(MESSAGE STREQUAL "")
  if(NOT result EQUAL 0 OR NOT EXISTS "${COPY}")
    message(FATAL_ERROR "refused:\n${messages}")
  endif()
elseif(result EQUAL 0)
  message(FATAL_ERROR "accepted")
elseif(NOT messages MATCHES "${MESSAGE}")
  message(FATAL_ERROR "refused without '${MESSAGE}':\n${messages}")
elseif(EXISTS "${COPY}")
  message(FATAL_ERROR "refused, but left behind for the loader to find")
endif()
