#include "reading/visible_text.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "reading/utf8.h"

namespace vestra::reading {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range INVISIBLE[] = {
    {0x0000, 0x001F},    // control characters
    {0x007F, 0x009F},    // control characters
    {0x00AD, 0x00AD},    // soft hyphen
    {0x034F, 0x034F},    // grapheme joiner
    {0x061C, 0x061C},    // Arabic letter mark, which turns the direction
    {0x115F, 0x1160},    // Hangul fillers
    {0x17B4, 0x17B5},    // Khmer vowels without a form
    {0x180B, 0x180F},    // Mongolian selectors and separator
    {0x200B, 0x200F},    // without width; marks of direction
    {0x2028, 0x202E},    // separators of lines; embeddings and overrides of direction
    {0x2060, 0x206F},    // joiners without width; isolates of direction
    {0x3164, 0x3164},    // Hangul filler
    {0xFDD0, 0xFDEF},    // no characters
    {0xFE00, 0xFE0F},    // variation selectors
    {0xFEFF, 0xFEFF},    // byte-order mark
    {0xFFA0, 0xFFA0},    // Hangul filler
    {0xFFF0, 0xFFFB},    // annotations
    {0x1BCA0, 0x1BCA3},  // controls of shorthand
    {0x1D173, 0x1D17A},  // controls of music
    {0xE0000, 0xE0FFF},  // tags and variation selectors
};

constexpr Range BLANKS[] = {{'\t', '\n'},     {' ', ' '},       {0x00A0, 0x00A0},
                            {0x1680, 0x1680}, {0x2000, 0x200A}, {0x202F, 0x202F},
                            {0x205F, 0x205F}, {0x2800, 0x2800}, {0x3000, 0x3000}};

template <std::size_t COUNT>
bool isIn(const Range (&ranges)[COUNT], char32_t codePoint) {
  return std::any_of(std::begin(ranges), std::end(ranges), [codePoint](const Range& range) {
    return codePoint >= range.first && codePoint <= range.last;
  });
}

/// XML allows a carriage return, but every parser makes a line feed of it.
bool isXmlCharacter(char32_t codePoint) {
  if (codePoint < 0x20) {
    return codePoint == '\t' || codePoint == '\n';
  }
  return codePoint != 0xFFFE && codePoint != 0xFFFF;
}

bool isForTerminal(char32_t codePoint) {
  return isVisible(codePoint) && codePoint != '\n' && codePoint != '\t';
}

/// The byte as people write it, `\x1b`.
std::string nameOfByte(char byte) {
  constexpr char DIGITS[] = "0123456789abcdef";
  const auto number = static_cast<unsigned char>(byte);
  return {'\\', 'x', DIGITS[number >> 4], DIGITS[number & 0x0F]};
}

std::string_view htmlOf(std::string_view character) {
  constexpr std::pair<char, std::string_view> ENTITIES[] = {
      {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
  for (const auto& [letter, entity] : ENTITIES) {
    if (character[0] == letter) {
      return entity;
    }
  }
  return character;
}

/// Writes each character that `isKept` accepts with `write`, and the names of all other bytes with `name`.
template <typename IsKept, typename Write>
std::string nameAllBut(std::string_view bytes, IsKept isKept, Write write,
                       std::string (*name)(std::string_view) = &namedBytes) {
  std::string text;
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    const std::string_view piece = bytes.substr(0, std::max<std::size_t>(1, character.length));
    if (character.length != 0 && isKept(character.codePoint)) {
      text += write(piece);
    } else {
      text += name(piece);
    }
    bytes.remove_prefix(piece.size());
  }
  return text;
}

std::string_view asItIs(std::string_view character) { return character; }

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

bool isXmlText(std::string_view bytes) { return isUtf8Of(bytes, isXmlCharacter); }

bool isVisible(char32_t codePoint) {
  if (codePoint >= ' ' && codePoint <= '~') {
    return true;
  }
  const bool isNoCharacter = (codePoint & 0xFFFEu) == 0xFFFEu;
  return codePoint == '\n' || codePoint == '\t' || (!isNoCharacter && !isIn(INVISIBLE, codePoint));
}

bool isBlank(std::string_view bytes) {
  return !bytes.empty() && isUtf8Of(bytes, [](char32_t codePoint) { return isIn(BLANKS, codePoint); });
}

std::string namedBytes(std::string_view bytes) {
  std::string names;
  for (const char byte : bytes) {
    names += nameOfByte(byte);
  }
  return names;
}

std::string namedForHtml(std::string_view bytes) {
  std::string html;
  for (const char byte : bytes) {
    html += "<span class=\"byte\">" + nameOfByte(byte) + "</span>";
  }
  return html;
}

std::string escapedForHtml(std::string_view bytes) {
  return nameAllBut(bytes, isVisible, htmlOf, &namedForHtml);
}

std::string escapedForXml(std::string_view bytes) {
  return nameAllBut(bytes, isXmlCharacter, [](std::string_view character) {
    return character == "\\" ? std::string_view("\\\\") : character;
  });
}

std::string forTerminal(std::string_view bytes) { return nameAllBut(bytes, isForTerminal, asItIs); }

std::string inQuotes(std::string_view bytes, std::size_t limit) {
  const std::string_view shown = firstBytes(bytes, limit);
  return '"' + forTerminal(shown) + (shown.size() < bytes.size() ? "...\"" : "\"");
}

}  // namespace vestra::reading
