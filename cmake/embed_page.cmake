# Writes OUTPUT, the source file that holds the texts of the page: the template, and the style and
# the script with their SHA-256. Both are put together from the files FOLDER/NAME.css and
# FOLDER/NAME.js; STYLES and SCRIPTS are the names in their order, with commas between them. The
# texts whose hashes are taken stay beside OUTPUT, as page.css and page.js.
get_filename_component(work ${OUTPUT} DIRECTORY)

# read_all(RESULT NAMES EXTENSION): the files one after the other.
function(read_all result names extension)
  string(REPLACE "," ";" names "${names}")
  set(all "")
  foreach(name IN LISTS names)
    file(READ ${FOLDER}/${name}.${extension} text)
    string(APPEND all "${text}")
  endforeach()
  set(${result} "${all}" PARENT_SCOPE)
endfunction()

# refuse(TEXT NAME PATTERN): what would end the element that the text stands in.
function(refuse text name pattern)
  if(text MATCHES "${pattern}")
    message(FATAL_ERROR "the page's ${name} holds ${CMAKE_MATCH_0}")
  endif()
endfunction()

# array(RESULT NAME FILE): the bytes of a file, and a zero byte, as an array of characters.
function(array result name file)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  set(${result} "constexpr char ${name}[] = {${bytes}0};\n" PARENT_SCOPE)
endfunction()

read_all(style "${STYLES}" css)
refuse("${style}" style "</[Ss][Tt][Yy][Ll][Ee]|\r")
file(WRITE ${work}/page.css "${style}")

read_all(script "${SCRIPTS}" js)
refuse("${script}" script "</?[Ss][Cc][Rr][Ii][Pp][Tt]|<!--|\r")
# One scope for all files, and strict, without being a module.
file(WRITE ${work}/page.js "(() => {\n\"use strict\";\n${script}})();\n")

file(SHA256 ${work}/page.css style_hash)
file(SHA256 ${work}/page.js script_hash)
array(template_array templateBytes ${FOLDER}/report.html)
array(style_array styleBytes ${work}/page.css)
array(script_array scriptBytes ${work}/page.js)
file(WRITE ${OUTPUT} "#include \"report/page_text.h\"

namespace {

${template_array}${style_array}${script_array}
}  // namespace

namespace Quillet {

std::string_view pageTemplate() { return {templateBytes, sizeof templateBytes - 1}; }

HashedText pageStyle() { return {{styleBytes, sizeof styleBytes - 1}, \"${style_hash}\"}; }

HashedText pageScript() { return {{scriptBytes, sizeof scriptBytes - 1}, \"${script_hash}\"}; }

}  // namespace Quillet
")
