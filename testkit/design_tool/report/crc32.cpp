#include "design_tool/report/crc32.h"

#include <array>

namespace vestra::design_tool {
namespace {

struct Tables {
  std::array<std::uint32_t, 256> forward{};
  /// By an entry's highest byte, which no other has, its place in `forward`.
  std::array<std::uint8_t, 256> place{};
};

Tables makeTables() {
  Tables tables;
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 1u) != 0 ? (value >> 1) ^ 0xEDB88320u : value >> 1;
    }
    tables.forward[i] = value;
    tables.place[value >> 24] = static_cast<std::uint8_t>(i);
  }
  return tables;
}

const Tables TABLES = makeTables();

}  // namespace

Crc32 Crc32::after(std::string_view bytes) const {
  std::uint32_t bits = state;
  for (const char byte : bytes) {
    bits = TABLES.forward[(bits ^ static_cast<unsigned char>(byte)) & 0xFF] ^ (bits >> 8);
  }
  return Crc32(bits);
}

Crc32 Crc32::before(std::string_view bytes) const {
  std::uint32_t bits = state;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    const std::uint8_t place = TABLES.place[bits >> 24];
    bits = ((bits ^ TABLES.forward[place]) << 8) | (place ^ static_cast<unsigned char>(*byte));
  }
  return Crc32(bits);
}

}  // namespace vestra::design_tool
