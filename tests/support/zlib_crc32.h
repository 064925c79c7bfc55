#ifndef VESTRA_TESTS_SUPPORT_ZLIB_CRC32_H
#define VESTRA_TESTS_SUPPORT_ZLIB_CRC32_H

#include <zlib.h>

#include <cstdint>
#include <string>

namespace vestra_test {

/// The CRC-32 of bytes, NUL included, by an implementation that is not ours.
inline std::uint32_t zlibCrc32(const std::string& bytes) {
  return static_cast<std::uint32_t>(
      ::crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

/// The same in decimal, as a report has it.
inline std::string zlibCrc32Text(const std::string& bytes) { return std::to_string(zlibCrc32(bytes)); }

}  // namespace vestra_test

#endif
