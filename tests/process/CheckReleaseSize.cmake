# cmake -DSOURCE=folder -DWORK=folder -DGENERATOR=Ninja -DCOMPILER=g++ -DSTRIP=strip -DMOST=bytes -P
# CheckReleaseSize.cmake
# Builds the library as it is released, strips a copy, and fails when that is larger than MOST.

execute_process(
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}" -G "${GENERATOR}"
          "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_BUILD_TYPE=Release -DKVL_BUILD_TESTS=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK}" --target KVLKernel
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

file(GLOB library LIST_DIRECTORIES false "${WORK}/bin/libKVLKernel.so.*.*.*")
execute_process(COMMAND "${STRIP}" -o "${WORK}/stripped" "${library}" COMMAND_ERROR_IS_FATAL ANY)
file(SIZE "${WORK}/stripped" size)
message(STATUS "${size} bytes, ${MOST} at most")
if(size GREATER MOST)
  message(FATAL_ERROR "The stripped library has ${size} bytes, ${MOST} at most are allowed.")
endif()
