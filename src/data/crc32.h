#ifndef VESTRA_DATA_CRC32_H
#define VESTRA_DATA_CRC32_H

#include <cstdint>

namespace Oza {

/// The CRC-32 of IEEE 802.3 (reflected, polynomial 0xEDB88320) of the bytes of
/// `text` before its terminating NUL; 0 for an empty text. `text` is not null.
std::uint32_t crc32(const char* text);

}  // namespace Oza

#endif
