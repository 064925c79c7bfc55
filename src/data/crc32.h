#ifndef VESTRA_DATA_CRC32_H
#define VESTRA_DATA_CRC32_H

#include <array>
#include <cstdint>
#include <string_view>

namespace Oza {

/// The CRC-32 of IEEE 802.3 (reflected, polynomial 0xEDB88320) of a text that is given in
/// pieces. The text ends at its first NUL, in whichever piece that is.
class Crc32 {
 public:
  Crc32() : tables(&filledTables()) {}

  void append(std::string_view piece);

  /// The checksum of the pieces so far; 0 for an empty text.
  std::uint32_t value() const { return state ^ 0xFFFFFFFFU; }

 private:
  // The n-th table holds the CRC of each byte followed by n zero bytes.
  using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

  static Tables makeTables();
  static const Tables& filledTables();

  const Tables* tables;
  std::uint32_t state = 0xFFFFFFFFU;
  bool hasEnded = false;
};

/// The CRC-32 of a C string, which is not null.
std::uint32_t crc32(const char* text);

}  // namespace Oza

#endif
