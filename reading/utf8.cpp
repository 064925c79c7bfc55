#include "reading/utf8.h"

namespace vestra::reading {
namespace {

struct Lead {
  std::size_t length;
  char32_t bits;
  char32_t smallest;
};

Lead readLead(unsigned char byte) {
  if (byte < 0x80) {
    return {1, byte, 0};
  }
  if (byte >= 0xC2 && byte < 0xE0) {
    return {2, byte & 0x1Fu, 0x80};
  }
  if (byte >= 0xE0 && byte < 0xF0) {
    return {3, byte & 0x0Fu, 0x800};
  }
  if (byte >= 0xF0 && byte < 0xF5) {
    return {4, byte & 0x07u, 0x10000};
  }
  return {0, 0, 0};
}

bool isCharacter(char32_t codePoint, char32_t smallest) {
  const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  return codePoint >= smallest && codePoint <= 0x10FFFF && !isSurrogate;
}

}  // namespace

Utf8Character firstCharacter(std::string_view bytes) {
  if (bytes.empty()) {
    return {};
  }
  const Lead lead = readLead(static_cast<unsigned char>(bytes[0]));
  if (lead.length == 0 || lead.length > bytes.size()) {
    return {};
  }
  char32_t codePoint = lead.bits;
  for (std::size_t i = 1; i < lead.length; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if ((byte & 0xC0u) != 0x80u) {
      return {};
    }
    codePoint = (codePoint << 6) | (byte & 0x3Fu);
  }
  if (!isCharacter(codePoint, lead.smallest)) {
    return {};
  }
  return {lead.length, codePoint};
}

}  // namespace vestra::reading
