#ifndef VESTRA_READING_BYTE_TEXT_H
#define VESTRA_READING_BYTE_TEXT_H

#include <string>

#include <nlohmann/json.hpp>

#include "reading/utf8.h"

namespace vestra::reading {

/// Bytes in a document: a string where they are UTF-8, else {"hex": "..."}.
inline nlohmann::ordered_json byteText(const std::string& bytes) {
  if (isUtf8(bytes)) {
    return bytes;
  }
  std::string digits;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    digits += "0123456789abcdef"[value >> 4U];
    digits += "0123456789abcdef"[value & 15U];
  }
  return {{"hex", digits}};
}

}  // namespace vestra::reading

#endif
