#ifndef VESTRA_DATA_BYTE_STRING_H
#define VESTRA_DATA_BYTE_STRING_H

#include <string>

namespace Oza {

/// A copy of a C string from the host or from the support library.
///
/// @throws std::logic_error "basic_string::_M_construct null not valid" when
///         `text` is null. Hosts rely on this message, which differs between
///         standard libraries.
std::string byteString(const char* text);

}  // namespace Oza

#endif
