#include "visible_text.h"

#include <fmt/format.h>

#include "utf8.h"

namespace vestra::design_tool {

namespace {

/// A carriage return is allowed, but whoever reads the document gets a line feed for it.
bool isXmlCharacter(char32_t code_point) {
  if (code_point < 0x20) return code_point == '\t' || code_point == '\n';
  return code_point != 0xFFFE && code_point != 0xFFFF;
}

bool isForTerminal(char32_t code_point) {
  return isVisible(code_point) && code_point != '\n' && code_point != '\t';
}

std::string nameBytes(std::string_view bytes) {
  std::string names;
  for (const char byte : bytes) names += nameOfByte(byte);
  return names;
}

/// Calls `keep` for each character that `is_kept` accepts, and appends the names of all other bytes.
template <typename IsKept, typename Keep>
std::string nameAllBut(std::string_view bytes, IsKept is_kept, Keep keep) {
  std::string text;
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    const std::string_view piece = bytes.substr(0, character.length == 0 ? 1 : character.length);
    if (character.length != 0 && is_kept(character.code_point)) keep(text, piece);
    else text += nameBytes(piece);
    bytes.remove_prefix(piece.size());
  }
  return text;
}

/// As much of `bytes` as `limit` allows without cutting a character in two.
std::string_view firstBytes(std::string_view bytes, std::size_t limit) {
  if (bytes.size() <= limit) return bytes;
  std::size_t end = limit;
  while (end > 0 && limit - end < 3 && (static_cast<unsigned char>(bytes[end]) & 0xC0u) == 0x80u) --end;
  return bytes.substr(0, end);
}

}  // namespace

bool isXmlText(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    if (character.length == 0 || !isXmlCharacter(character.code_point)) return false;
    bytes.remove_prefix(character.length);
  }
  return true;
}

bool isVisible(char32_t code_point) {
  if (code_point == '\n' || code_point == '\t') return true;
  const bool is_control = code_point < 0x20 || (code_point >= 0x7F && code_point <= 0x9F);
  const bool is_no_character = (code_point & 0xFFFEu) == 0xFFFEu || (code_point >= 0xFDD0 && code_point <= 0xFDEF);
  return !is_control && !is_no_character;
}

std::string nameOfByte(char byte) {
  return fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
}

std::string escapedForXml(std::string_view bytes) {
  return nameAllBut(bytes, isXmlCharacter, [](std::string& text, std::string_view character) {
    if (character == "\\") text += '\\';
    text += character;
  });
}

std::string forTerminal(std::string_view bytes) {
  return nameAllBut(bytes, isForTerminal, [](std::string& text, std::string_view character) { text += character; });
}

std::string inQuotes(std::string_view bytes, std::size_t limit) {
  const std::string_view shown = firstBytes(bytes, limit);
  return fmt::format("\"{}{}\"", forTerminal(shown), shown.size() < bytes.size() ? "..." : "");
}

}  // namespace vestra::design_tool
