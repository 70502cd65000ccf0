# cmake -DCOMPILER=g++ -DSIZE=size -DINCLUDE=folder,folder -DWORK=folder -P KitCost.cmake
# Prints what a function published through the kit costs to compile, and in the module: 200 functions
# of 40 signatures in one source, less a source that publishes one.

string(REPLACE "," ";-I" INCLUDE "-I${INCLUDE}")
file(MAKE_DIRECTORY "${WORK}")
set(count 200)
set(signatures 40)
set(types int double bool std::int64_t "const MRBUnicodeString&")

set(many "#include \"KVLKit.h\"\nnamespace {\n")
set(published "")
math(EXPR last "${count} - 1")
foreach(i RANGE ${last})
  # Each signature has three parameters; their types are the digits of its number to the base 5.
  math(EXPR signature "${i} % ${signatures}")
  set(params "")
  foreach(name IN ITEMS a b c)
    math(EXPR digit "${signature} % 5")
    math(EXPR signature "${signature} / 5")
    list(GET types ${digit} type)
    list(APPEND params "${type} ${name}")
  endforeach()
  list(JOIN params ", " params)
  string(APPEND many "int F${i}(${params}) { return (void)a, (void)b, (void)c, ${i}; }\n")
  string(APPEND published
         "KVL_FUNCTION(\"bench/f${i}\", \"a, b, c\", \"Returns ${i}.\", F${i});\n")
endforeach()
file(WRITE "${WORK}/many.cpp" "${many}}\n${published}")
file(WRITE "${WORK}/one.cpp"
     "#include \"KVLKit.h\"\nKVL_FUNCTION(\"bench/f\", \"\", \"Returns 0.\", [] { return 0; });\n")

# measure(NAME): the least time of three, in microseconds, and the size of the library, in bytes.
function(measure name)
  set(least 0)
  set(library "${WORK}/${name}.so")
  foreach(round RANGE 2)
    string(TIMESTAMP begin "%s%f" UTC)
    execute_process(
      COMMAND "${COMPILER}" -std=c++17 -O2 -fPIC -fvisibility=hidden -fvisibility-inlines-hidden
              -fno-gnu-unique ${INCLUDE} -shared "${WORK}/${name}.cpp" -o "${library}"
              COMMAND_ERROR_IS_FATAL ANY)
    string(TIMESTAMP end "%s%f" UTC)
    math(EXPR time "${end} - ${begin}")
    if(least EQUAL 0 OR time LESS least)
      set(least ${time})
    endif()
  endforeach()
  execute_process(COMMAND "${SIZE}" "${library}" OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[0-9]+" numbers "${output}")
  list(GET numbers 0 text)
  list(GET numbers 1 data)
  math(EXPR size "${text} + ${data}")
  set(${name}Time ${least} PARENT_SCOPE)
  set(${name}Size ${size} PARENT_SCOPE)
endfunction()

measure(one)
measure(many)
math(EXPR time "(${manyTime} - ${oneTime}) / (${count} - 1)")
math(EXPR size "(${manySize} - ${oneSize}) / (${count} - 1)")
math(EXPR milliseconds "${manyTime} / 1000")
execute_process(COMMAND "${CMAKE_COMMAND}" -E echo
  "\n${count} functions of ${signatures} signatures through the kit: ${milliseconds} ms to compile, ${time} us and ${size} bytes each")
