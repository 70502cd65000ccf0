# What can be said of libraries and headers without running them.

if(NOT WIN32 AND CMAKE_NM)
  # kvl_add_module_check_test(NAME TARGET MESSAGE): what the check of a module's build says of the
  # library.
  function(kvl_add_module_check_test name target message)
    add_test(
      NAME ModuleCheck.${name}
      COMMAND
        "${CMAKE_COMMAND}" "-DCHECK=${PROJECT_SOURCE_DIR}/cmake/KVLCheckModule.cmake"
        "-DNM=${CMAKE_NM}" "-DLIBRARY=$<TARGET_FILE:${target}>"
        "-DCOPY=${CMAKE_CURRENT_BINARY_DIR}/checked-${name}.so" "-DMESSAGE=${message}" -P
        "${CMAKE_CURRENT_SOURCE_DIR}/CheckModuleTest.cmake")
    set_tests_properties(ModuleCheck.${name} PROPERTIES TIMEOUT 60 LABELS process)
  endfunction()

  # kvl_add_plain_library(NAME SOURCE): a library as a module's author might build it on their own.
  function(kvl_add_plain_library name source)
    add_library(${name} MODULE ${source})
    target_compile_features(${name} PRIVATE cxx_std_17)
    set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY
                                             "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  endfunction()

  kvl_add_plain_library(KVLThreadLocalDestructor libraries/ThreadLocalDestructor.cpp)
  kvl_add_module_check_test(RefusesAThreadLocalObjectWithADestructor KVLThreadLocalDestructor
                            " U __cxa_thread_atexit")
  # Only GCC makes such symbols.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    kvl_add_plain_library(KVLUniqueSymbol libraries/UniqueSymbol.cpp)
    target_compile_options(KVLUniqueSymbol PRIVATE -fgnu-unique)
    kvl_add_module_check_test(RefusesAUniqueSymbol KVLUniqueSymbol
                              " u [^ ]*PerProcess")
  endif()
  kvl_add_test_module(KVLUniqueSymbolAsModule UniqueSymbolAsModule libraries/UniqueSymbol.cpp)
  kvl_add_module_check_test(AcceptsTheSameSourceBuiltAsAModule KVLUniqueSymbolAsModule "")

  # A sanitizer adds names of its own.
  if(NOT sanitized)
    add_test(NAME Exports
             COMMAND "${CMAKE_COMMAND}" "-DNM=${CMAKE_NM}" "-DLIBRARY=$<TARGET_FILE:KVLKernel>"
                     "-DEXPORTS=${CMAKE_CURRENT_SOURCE_DIR}/KVLKernel.exports" -P
                     "${CMAKE_CURRENT_SOURCE_DIR}/CheckExports.cmake")
    set_tests_properties(Exports PROPERTIES TIMEOUT 60 LABELS process)
    add_test(
      NAME Relocations
      COMMAND "${CMAKE_COMMAND}" "-DNM=${CMAKE_NM}" "-DREADELF=${CMAKE_READELF}"
              "-DLIBRARY=$<TARGET_FILE:KVLKernel>" -P
              "${CMAKE_CURRENT_SOURCE_DIR}/CheckRelocations.cmake")
    set_tests_properties(Relocations PROPERTIES TIMEOUT 60 LABELS process)
    add_test(
      NAME ReleaseSize
      COMMAND
        "${CMAKE_COMMAND}" "-DSOURCE=${PROJECT_SOURCE_DIR}"
        "-DWORK=${CMAKE_CURRENT_BINARY_DIR}/release" "-DGENERATOR=${CMAKE_GENERATOR}"
        "-DCOMPILER=${CMAKE_CXX_COMPILER}" "-DSTRIP=${CMAKE_STRIP}" -DMOST=250000 -P
        "${CMAKE_CURRENT_SOURCE_DIR}/CheckReleaseSize.cmake")
    set_tests_properties(ReleaseSize PROPERTIES TIMEOUT 900 LABELS process)
  endif()
  add_test(NAME NoUniqueSymbols
           COMMAND "${CMAKE_COMMAND}" "-DNM=${CMAKE_NM}"
                   "-DFOLDER=${CMAKE_LIBRARY_OUTPUT_DIRECTORY}" -P
                   "${CMAKE_CURRENT_SOURCE_DIR}/CheckUniqueSymbols.cmake")
  set_tests_properties(NoUniqueSymbols PROPERTIES TIMEOUT 60 LABELS process)
endif()

list(TRANSFORM KVL_PUBLIC_HEADERS REPLACE ".*/" "" OUTPUT_VARIABLE headers)
list(JOIN headers "," headers)
list(TRANSFORM KVL_KIT_HEADERS REPLACE ".*/" "" OUTPUT_VARIABLE kitHeaders)
list(JOIN kitHeaders "," kitHeaders)

foreach(compiler IN ITEMS GCC CLANG)
  if(NOT KVL_STATIC_CHECKS OR NOT KVL_${compiler})
    continue()
  endif()
  foreach(standard IN ITEMS 17 20)
    set(name Headers.${compiler}.${standard})
    add_test(
      NAME ${name}
      COMMAND
        "${CMAKE_COMMAND}" "-DCOMPILER=${KVL_${compiler}}" -DSTANDARD=${standard}
        "-DINCLUDE=${PROJECT_SOURCE_DIR}/include" "-DHEADERS=${headers}"
        "-DSOURCE=${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp" -P
        "${CMAKE_CURRENT_SOURCE_DIR}/CheckHeaders.cmake")
    add_test(
      NAME ${name}.Kit
      COMMAND
        "${CMAKE_COMMAND}" "-DCOMPILER=${KVL_${compiler}}" -DSTANDARD=${standard}
        "-DINCLUDE=${PROJECT_SOURCE_DIR}/include,${PROJECT_SOURCE_DIR}/kit"
        "-DHEADERS=${kitHeaders}" "-DSOURCE=${CMAKE_CURRENT_BINARY_DIR}/${name}.Kit.cpp" -P
        "${CMAKE_CURRENT_SOURCE_DIR}/CheckHeaders.cmake")
    set_tests_properties(${name} ${name}.Kit PROPERTIES TIMEOUT 120 LABELS headers)
  endforeach()
endforeach()

add_test(NAME Headers.Umbrella
         COMMAND "${CMAKE_COMMAND}" "-DINCLUDE=${PROJECT_SOURCE_DIR}/include"
                 "-DHEADERS=${headers}" -P "${CMAKE_CURRENT_SOURCE_DIR}/CheckUmbrella.cmake")
set_tests_properties(Headers.Umbrella PROPERTIES TIMEOUT 60 LABELS headers)
