# cmake -DFOLDER=folder -DOUTPUT=file.cpp -P Embed.cmake
# Writes the files of the page as texts of a source file.

set(delimiter "kvl_asset")
set(source "#include \"KVLShellExportAssets.h\"\n")
foreach(asset IN ITEMS "page.html KVLShellExportPageAsset" "style.css KVLShellExportStyleAsset"
                       "page.js KVLShellExportScriptAsset")
  string(REPLACE " " ";" asset "${asset}")
  list(GET asset 0 file)
  list(GET asset 1 name)
  file(READ "${FOLDER}/${file}" text)
  if(text MATCHES "\\)${delimiter}\"")
    message(FATAL_ERROR "${file} holds the end of its own text")
  endif()
  string(APPEND source "\nconst char ${name}[] = R\"${delimiter}(${text})${delimiter}\";\n")
endforeach()
file(WRITE "${OUTPUT}" "${source}")
