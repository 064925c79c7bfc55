#include "data/crc32.h"

#include <cstring>

namespace Oza {
namespace {

bool hasZeroByte(std::uint64_t bytes) {
  return ((bytes - 0x0101010101010101U) & ~bytes & 0x8080808080808080U) != 0;
}

}  // namespace

Crc32::Tables Crc32::makeTables() {
  Tables made{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t entry = i;
    for (int bit = 0; bit < 8; ++bit) {
      entry = (entry & 1U) != 0 ? (entry >> 1) ^ 0xEDB88320U : entry >> 1;
    }
    made[0][i] = entry;
  }
  for (std::size_t n = 1; n < made.size(); ++n) {
    for (std::size_t i = 0; i < 256; ++i) {
      const std::uint32_t shorter = made[n - 1][i];
      made[n][i] = (shorter >> 8) ^ made[0][shorter & 0xFFU];
    }
  }
  return made;
}

// Filled by the first checksum, so that loading the library costs nothing.
const Crc32::Tables& Crc32::filledTables() {
  static const Tables filled = makeTables();
  return filled;
}

// Slicing by 8: the eight table look-ups of a word do not depend on each other. Assumes a
// little-endian machine (x86-64).
void Crc32::append(std::string_view piece) {
  const Tables& table = *tables;
  const char* next = piece.data();
  const char* const end = next + piece.size();
  if (hasEnded) {
    return;
  }
  for (; end - next >= 8; next += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, next, sizeof word);
    if (hasZeroByte(word)) {
      break;
    }
    word ^= state;
    state = table[7][word & 0xFFU] ^ table[6][word >> 8 & 0xFFU] ^ table[5][word >> 16 & 0xFFU] ^
            table[4][word >> 24 & 0xFFU] ^ table[3][word >> 32 & 0xFFU] ^ table[2][word >> 40 & 0xFFU] ^
            table[1][word >> 48 & 0xFFU] ^ table[0][word >> 56];
  }
  for (; next != end; ++next) {
    if (*next == '\0') {
      hasEnded = true;
      return;
    }
    state = table[0][(state ^ static_cast<unsigned char>(*next)) & 0xFFU] ^ (state >> 8);
  }
}

std::uint32_t crc32(const char* text) {
  Crc32 checksum;
  checksum.append(text);
  return checksum.value();
}

}  // namespace Oza
