# What every target of this project is built with.

# Warnings; the project builds without any.
function(kvl_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
endfunction()

# On Windows a library is called as its target, as everywhere else in its texts.
function(kvl_name_library target)
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
endfunction()

# kvl_add_layer(NAME BELOW layer... SOURCES source...): one folder of the kernel. Its sources see
# the public headers, their own folder and the folders BELOW.
function(kvl_add_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "BELOW;SOURCES")
  add_library(kvl_${name} OBJECT ${arg_SOURCES})
  target_compile_features(kvl_${name} PUBLIC cxx_std_17)
  target_compile_definitions(kvl_${name} PRIVATE KVLKernel_EXPORTS)
  target_include_directories(kvl_${name} PRIVATE "${PROJECT_SOURCE_DIR}/include"
                                                 "${CMAKE_CURRENT_SOURCE_DIR}")
  foreach(layer IN LISTS arg_BELOW)
    target_include_directories(kvl_${name} PRIVATE "${PROJECT_SOURCE_DIR}/${layer}")
  endforeach()
  set_target_properties(
    kvl_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF
                           CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # The kernel calls its own members directly, also those that it exports.
  if(NOT WIN32)
    target_compile_options(kvl_${name} PRIVATE -fno-semantic-interposition)
  endif()
  kvl_set_warnings(kvl_${name})
endfunction()

# Puts the compiler's own libraries beside the programs that need them.
function(kvl_copy_runtime_libraries)
  foreach(library IN ITEMS libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(
      COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${library}"
      OUTPUT_VARIABLE path
      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT IS_ABSOLUTE "${path}")
      set(path "/usr/x86_64-w64-mingw32/lib/${library}")
    endif()
    file(COPY "${path}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  endforeach()
endfunction()
