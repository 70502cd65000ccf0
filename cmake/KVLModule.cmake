# For authors of code-environment modules.
#
#   kvl_add_module(KVLCodeEnv_Mine mine.cpp more.cpp)
#
# makes the library that `KVLCodeEnvAccess::Load` finds under the name KVLCodeEnv_Mine, with the
# kernel and the kit at hand and built so that it can be unloaded again: nothing is exported that does not say so, and
# no symbol is unique to the process. The build fails when the library could stay mapped for ever.

include(CheckCXXCompilerFlag)

function(kvl_add_module name)
  check_cxx_compiler_flag(-fno-gnu-unique KVL_HAS_NO_GNU_UNIQUE)
  add_library(${name} MODULE ${ARGN})
  target_link_libraries(${name} PRIVATE KVLKernel::KVLKit)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                           VISIBILITY_INLINES_HIDDEN ON)
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "")
  elseif(KVL_HAS_NO_GNU_UNIQUE)
    target_compile_options(${name} PRIVATE -fno-gnu-unique)
  endif()
  if(NOT WIN32 AND CMAKE_NM)
    add_custom_command(
      TARGET ${name}
      POST_BUILD
      COMMAND "${CMAKE_COMMAND}" "-DNM=${CMAKE_NM}" "-DMODULE=$<TARGET_FILE:${name}>" -P
              "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/KVLCheckModule.cmake"
      VERBATIM)
  endif()
endfunction()
