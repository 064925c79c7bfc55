#include "reading/html_text.h"

#include "reading/utf8.h"
#include "reading/visible_text.h"

namespace vestra::reading {
namespace {

void appendCharacter(std::string& html, std::string_view character) {
  if (character == "&") {
    html += "&amp;";
  } else if (character == "<") {
    html += "&lt;";
  } else if (character == ">") {
    html += "&gt;";
  } else if (character == "\"") {
    html += "&quot;";
  } else if (character == "'") {
    html += "&#39;";
  } else {
    html += character;
  }
}

}  // namespace

std::string namedForHtml(std::string_view bytes) {
  std::string html;
  for (const char byte : bytes) {
    html += "<span class=\"byte\">" + nameOfByte(byte) + "</span>";
  }
  return html;
}

std::string escapedForHtml(std::string_view bytes) {
  std::string html;
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    const std::string_view piece = bytes.substr(0, character.length == 0 ? 1 : character.length);
    if (character.length != 0 && isVisible(character.codePoint)) {
      appendCharacter(html, piece);
    } else {
      html += namedForHtml(piece);
    }
    bytes.remove_prefix(piece.size());
  }
  return html;
}

}  // namespace vestra::reading
