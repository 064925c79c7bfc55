#ifndef VESTRA_READING_TCL_TEXT_H
#define VESTRA_READING_TCL_TEXT_H

#include <string>
#include <string_view>

namespace vestra::reading {

/// Widens each byte to the character of the same number, in the interpreter's own encoding, NUL included.
/// A script is read this way so that what it hands to its commands can be turned back into the very same
/// bytes.
std::string toTclText(std::string_view bytes);

/// Undoes toTclText. A character above U+00FF, which only an escape in the script can make, becomes its UTF-8
/// bytes.
std::string toBytes(std::string_view tclText);

}  // namespace vestra::reading

#endif
