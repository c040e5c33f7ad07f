# Writes the texts of the description into a header, so that the camera needs no file beside it.
#   cmake -DOUT=header.h -DTEXTS=a.xml,b.xml -P embed_texts.cmake
string(REPLACE "," ";" TEXTS "${TEXTS}")
set(header "#pragma once\n\n#include <string_view>\n\nnamespace kivsim {\n\ninline constexpr std::string_view kDescriptionTexts[] = {\n")
foreach(text IN LISTS TEXTS)
  file(READ "${text}" content)
  string(APPEND header "R\"KIVTEXT(${content})KIVTEXT\",\n")
endforeach()
string(APPEND header "};\n\n}  // namespace kivsim\n")
file(WRITE "${OUT}" "${header}")
