# The installed package: find_package(KVLKernel) gives KVLKernel::KVLKernel and kvl_add_module().

include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/KVLKernel")

install(
  TARGETS KVLKernel KVLKit
  EXPORT KVLKernelTargets
  FILE_SET HEADERS
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/KVLKernel")
install(
  EXPORT KVLKernelTargets
  NAMESPACE KVLKernel::
  DESTINATION "${packageDir}")

configure_package_config_file(cmake/KVLKernelConfig.cmake.in KVLKernelConfig.cmake
                              INSTALL_DESTINATION "${packageDir}")
write_basic_package_version_file(KVLKernelConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES "${CMAKE_CURRENT_BINARY_DIR}/KVLKernelConfig.cmake"
        "${CMAKE_CURRENT_BINARY_DIR}/KVLKernelConfigVersion.cmake" cmake/KVLModule.cmake
        cmake/KVLCheckModule.cmake
  DESTINATION "${packageDir}")

if(PROJECT_IS_TOP_LEVEL)
  include(KVLPackage)
endif()
