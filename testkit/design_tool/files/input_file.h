#ifndef VESTRA_DESIGN_TOOL_FILES_INPUT_FILE_H
#define VESTRA_DESIGN_TOOL_FILES_INPUT_FILE_H

#include <string>

namespace vestra::design_tool {

/// The whole content of a regular file, any bytes.
/// @throws DiagnosedError when it cannot be read or is no regular file; never waits for a pipe or a device
std::string readRegularFile(const std::string& path);

}  // namespace vestra::design_tool

#endif
