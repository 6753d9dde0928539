# Writes the page's files into a source file: cmake -DFOLDER=page -DOUTPUT=page_files.cpp -P embed.cmake
set(rows "")
foreach(row "/|index.html|text/html; charset=utf-8" "/page.css|page.css|text/css; charset=utf-8"
            "/page.js|page.js|text/javascript; charset=utf-8"
            "/host.js|host.js|text/javascript; charset=utf-8"
            "/messages.js|messages.js|text/javascript; charset=utf-8"
            "/icon.svg|icon.svg|image/svg+xml")
  string(REPLACE "|" ";" cells "${row}")
  list(GET cells 0 path)
  list(GET cells 1 file)
  string(REGEX REPLACE "^[^|]*\\|[^|]*\\|" "" type "${row}")
  file(READ ${FOLDER}/${file} text)
  # String literals have a maximum length; adjacent ones are joined.
  string(REGEX REPLACE "\n\n" "\n)=====\" R\"=====(\n" text "${text}")
  string(APPEND rows "    {\"${path}\", \"${type}\", R\"=====(${text})=====\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"web/page_files.h\"

namespace rotacasts::host::web {
namespace {

constexpr PageFile kFiles[] = {
${rows}};

}  // namespace

const std::span<const PageFile> kPageFiles = kFiles;

}  // namespace rotacasts::host::web
")
