# cmake -DCXX=g++ -DREADELF=... -DCXXFILT=... -DAWK=... -DINCLUDE=dir -DWORK=dir -DEXPECTED=file
#       -P CheckLayout.cmake
# Fails when a field, a virtual operation or the size of a public class is not where the checked-in
# text says.

get_filename_component(here "${CMAKE_SCRIPT_MODE_FILE}" DIRECTORY)

execute_process(
  COMMAND
    "${CXX}" -std=c++17 -g -gdwarf-4 -femit-class-debug-always -fno-eliminate-unused-debug-types
    -fno-debug-types-section -c "-I${INCLUDE}" "${here}/LayoutProbe.cpp" -o "${WORK}/LayoutProbe.o"
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C "${READELF}" --wide --debug-dump=info
          "${WORK}/LayoutProbe.o"
  COMMAND "${CXXFILT}"
  COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C "${AWK}" -f "${here}/layout.awk"
  OUTPUT_FILE "${WORK}/KVLKernel.layout"
  COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files --ignore-eol "${EXPECTED}"
                        "${WORK}/KVLKernel.layout" RESULT_VARIABLE differs)
if(differs)
  execute_process(COMMAND diff -u "${EXPECTED}" "${WORK}/KVLKernel.layout")
  message(FATAL_ERROR "The layout of the public classes has changed, and with it the binary "
                      "interface. Where that is meant, copy ${WORK}/KVLKernel.layout over "
                      "${EXPECTED}.")
endif()
