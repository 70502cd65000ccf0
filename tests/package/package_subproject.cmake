# Builds the kernel as part of another project.

include("${CMAKE_CURRENT_LIST_DIR}/PackageTest.cmake")
file(REMOVE_RECURSE "${WORK}")
build_project("${CMAKE_CURRENT_LIST_DIR}/subproject" "${WORK}" "-DKVL_SOURCE=${KVL_SOURCE}")
run_greet("${WORK}" "${WORK}/bin")
