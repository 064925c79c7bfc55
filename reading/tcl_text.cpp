#include "reading/tcl_text.h"

namespace vestra::reading {
std::string toTclText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    // The interpreter ends its strings with NUL, so it writes the character NUL in two bytes.
    if (number != 0 && number < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0u | (number >> 6));
      text += static_cast<char>(0x80u | (number & 0x3Fu));
    }
  }
  return text;
}

std::string toBytes(std::string_view tclText) {
  std::string bytes;
  bytes.reserve(tclText.size());
  for (std::size_t i = 0; i < tclText.size(); ++i) {
    const auto lead = static_cast<unsigned char>(tclText[i]);
    // These lead the two-byte characters up to U+00FF.
    if ((lead == 0xC0 || lead == 0xC2 || lead == 0xC3) && i + 1 < tclText.size()) {
      const auto trail = static_cast<unsigned char>(tclText[++i]);
      bytes += static_cast<char>(((lead & 0x03u) << 6) | (trail & 0x3Fu));
    } else {
      bytes += tclText[i];
    }
  }
  return bytes;
}

}  // namespace vestra::reading
