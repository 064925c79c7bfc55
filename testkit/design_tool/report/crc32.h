#ifndef VESTRA_DESIGN_TOOL_REPORT_CRC32_H
#define VESTRA_DESIGN_TOOL_REPORT_CRC32_H

#include <cstdint>
#include <string_view>

namespace vestra::design_tool {

/// The register of a CRC-32 (IEEE 802.3, reflected), which can be run in both directions.
class Crc32 {
 public:
  /// Before any byte.
  Crc32() = default;
  /// The state that ends in this checksum.
  static Crc32 endingIn(std::uint32_t checksum) { return Crc32(~checksum); }

  /// The state after these bytes.
  Crc32 after(std::string_view bytes) const;
  /// The state that these bytes lead here from.
  Crc32 before(std::string_view bytes) const;

  std::uint32_t checksum() const { return ~state; }
  bool operator==(const Crc32& other) const { return state == other.state; }

 private:
  explicit Crc32(std::uint32_t bits) : state(bits) {}

  std::uint32_t state = 0xFFFFFFFF;
};

}  // namespace vestra::design_tool

#endif
