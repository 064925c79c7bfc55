#include "reading/tcl_text.h"

#include <algorithm>

namespace vestra::reading {
namespace {

/// The interpreter ends its strings with NUL, so it writes the character NUL in two bytes.
bool isWide(char byte) { return byte == '\0' || static_cast<unsigned char>(byte) >= 0x80; }

/// Whether a two-byte character starts with `byte` whose number is below 256.
bool leadsNarrowCharacter(char byte) {
  const auto lead = static_cast<unsigned char>(byte);
  return lead == 0xC0 || lead == 0xC2 || lead == 0xC3;
}

void appendWide(std::string& text, char byte) {
  const auto number = static_cast<unsigned char>(byte);
  text += static_cast<char>(0xC0u | (number >> 6));
  text += static_cast<char>(0x80u | (number & 0x3Fu));
}

char narrow(char lead, char trail) {
  return static_cast<char>(((static_cast<unsigned char>(lead) & 0x03u) << 6) |
                           (static_cast<unsigned char>(trail) & 0x3Fu));
}

}  // namespace

std::string toTclText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), isWide)));
  for (const char byte : bytes) {
    if (isWide(byte)) {
      appendWide(text, byte);
    } else {
      text += byte;
    }
  }
  return text;
}

std::string toBytes(std::string_view tclText) {
  std::string bytes;
  bytes.reserve(tclText.size());
  for (std::size_t i = 0; i < tclText.size(); ++i) {
    if (leadsNarrowCharacter(tclText[i]) && i + 1 < tclText.size()) {
      bytes += narrow(tclText[i], tclText[i + 1]);
      ++i;
    } else {
      bytes += tclText[i];
    }
  }
  return bytes;
}

}  // namespace vestra::reading
