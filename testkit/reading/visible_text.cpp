#include "reading/visible_text.h"

#include "reading/utf8.h"

namespace vestra::reading {
namespace {

/// A carriage return is allowed, but whoever reads the document gets a line feed for it.
bool isXmlCharacter(char32_t codePoint) {
  if (codePoint < 0x20) {
    return codePoint == '\t' || codePoint == '\n';
  }
  return codePoint != 0xFFFE && codePoint != 0xFFFF;
}

bool isForTerminal(char32_t codePoint) {
  return isVisible(codePoint) && codePoint != '\n' && codePoint != '\t';
}

std::string nameBytes(std::string_view bytes) {
  std::string names;
  for (const char byte : bytes) {
    names += nameOfByte(byte);
  }
  return names;
}

/// Calls `keep` for each character that `isKept` accepts, and appends the names of all other bytes.
template <typename IsKept, typename Keep>
std::string nameAllBut(std::string_view bytes, IsKept isKept, Keep keep) {
  std::string text;
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    const std::string_view piece = bytes.substr(0, character.length == 0 ? 1 : character.length);
    if (character.length != 0 && isKept(character.codePoint)) {
      keep(text, piece);
    } else {
      text += nameBytes(piece);
    }
    bytes.remove_prefix(piece.size());
  }
  return text;
}

/// As much of `bytes` as `limit` allows without cutting a character in two.
std::string_view firstBytes(std::string_view bytes, std::size_t limit) {
  if (bytes.size() <= limit) {
    return bytes;
  }
  std::size_t end = limit;
  while (end > 0 && limit - end < 3 && (static_cast<unsigned char>(bytes[end]) & 0xC0u) == 0x80u) {
    --end;
  }
  return bytes.substr(0, end);
}

}  // namespace

bool isXmlText(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    if (character.length == 0 || !isXmlCharacter(character.codePoint)) {
      return false;
    }
    bytes.remove_prefix(character.length);
  }
  return true;
}

bool isVisible(char32_t codePoint) {
  if (codePoint == '\n' || codePoint == '\t') {
    return true;
  }
  const bool isControl = codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F);
  const bool isNoCharacter = (codePoint & 0xFFFEu) == 0xFFFEu || (codePoint >= 0xFDD0 && codePoint <= 0xFDEF);
  return !isControl && !isNoCharacter;
}

std::string nameOfByte(char byte) {
  constexpr char DIGITS[] = "0123456789abcdef";
  const auto number = static_cast<unsigned char>(byte);
  return {'\\', 'x', DIGITS[number >> 4], DIGITS[number & 0x0F]};
}

std::string escapedForXml(std::string_view bytes) {
  return nameAllBut(bytes, isXmlCharacter, [](std::string& text, std::string_view character) {
    if (character == "\\") {
      text += '\\';
    }
    text += character;
  });
}

std::string forTerminal(std::string_view bytes) {
  return nameAllBut(bytes, isForTerminal,
                    [](std::string& text, std::string_view character) { text += character; });
}

std::string inQuotes(std::string_view bytes, std::size_t limit) {
  const std::string_view shown = firstBytes(bytes, limit);
  return '"' + forTerminal(shown) + (shown.size() < bytes.size() ? "...\"" : "\"");
}

}  // namespace vestra::reading
