#ifndef VESTRA_READING_BYTE_TEXT_H
#define VESTRA_READING_BYTE_TEXT_H

#include <string>

#include <boost/algorithm/hex.hpp>
#include <nlohmann/json.hpp>

#include "reading/utf8.h"

namespace vestra::reading {

/// Bytes in a document: a string where they are UTF-8, else {"hex": "..."}.
inline nlohmann::ordered_json byteText(const std::string& bytes) {
  if (isUtf8(bytes)) {
    return bytes;
  }
  return {{"hex", boost::algorithm::hex_lower(bytes)}};
}

}  // namespace vestra::reading

#endif
