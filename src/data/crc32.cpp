#include "data/crc32.h"

#include <array>

namespace Oza {
namespace {

using CrcTable = std::array<std::uint32_t, 256>;

CrcTable makeTable() {
  CrcTable table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t entry = i;
    for (int bit = 0; bit < 8; ++bit) {
      entry = (entry & 1U) != 0 ? (entry >> 1) ^ 0xEDB88320U : entry >> 1;
    }
    table[i] = entry;
  }
  return table;
}

// Filled at the first checksum, so that loading the library costs nothing.
const CrcTable& crcTable() {
  static const CrcTable table = makeTable();
  return table;
}

}  // namespace

std::uint32_t crc32(const char* text) {
  const CrcTable& table = crcTable();
  std::uint32_t crc = 0xFFFFFFFFU;
  for (; *text != '\0'; ++text) {
    crc = table[(crc ^ static_cast<unsigned char>(*text)) & 0xFFU] ^ (crc >> 8);
  }
  return crc ^ 0xFFFFFFFFU;
}

}  // namespace Oza
