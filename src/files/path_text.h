#ifndef VESTRA_FILES_PATH_TEXT_H
#define VESTRA_FILES_PATH_TEXT_H

#include <cstddef>
#include <string>

namespace Oza {

/// The directory part of a path whose file name has `nameLength` bytes: the path
/// without its last `nameLength` bytes, the final slash kept. A path shorter than
/// that is returned whole.
std::string directoryOf(const std::string& path, std::size_t nameLength);

/// The directory part of a path whose file name holds no slash, the final slash kept.
std::string directoryOfFile(const std::string& path);

}  // namespace Oza

#endif
