# Installs the build to a folder of its own and uses it from there.

include("${CMAKE_CURRENT_LIST_DIR}/PackageTest.cmake")
file(REMOVE_RECURSE "${WORK}")
set(prefix "${WORK}/prefix")
run_step("${CMAKE_COMMAND}" --install "${KVL_BUILD}" --config "${KVL_CONFIG}" --prefix "${prefix}")

file(GLOB expected RELATIVE "${KVL_SOURCE}/include" "${KVL_SOURCE}/include/*.h")
file(GLOB installed RELATIVE "${prefix}/include/KVLKernel" "${prefix}/include/KVLKernel/*")
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed headers: ${installed}\ninstead of: ${expected}")
endif()

# The project's text lies where it can see nothing of this one's.
file(COPY "${KVL_SOURCE}/docs/examples/greeting" DESTINATION "${WORK}")
build_project("${WORK}/greeting" "${WORK}/build" "-DCMAKE_PREFIX_PATH=${prefix}")
run_greet("${WORK}/build" "${prefix}/bin")

file(GLOB kvl "${prefix}/bin/kvl" "${prefix}/bin/kvl.exe")
run_program("${kvl}" "7.75\n" -c "call math/add 3.5 4.25")
