#ifndef VESTRA_DESIGN_TOOL_FILES_OUTPUT_FILE_H
#define VESTRA_DESIGN_TOOL_FILES_OUTPUT_FILE_H

#include <filesystem>
#include <string>
#include <string_view>

namespace vestra::design_tool {

/// Checks that a report may be written to `path`: below `root` once symbolic links are resolved, and over
/// nothing but a regular file.
/// @throws DiagnosedError
void checkOutput(const std::filesystem::path& path, const std::string& root);

/// Whether both paths lead to one file, or would once it is written: links and `..` are resolved.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

/// Writes a file atomically, through a temporary file in its directory and a rename: the old content, if any,
/// stays until the new one is complete.
/// @throws DiagnosedError; then no temporary file is left
void replaceFile(const std::filesystem::path& path, std::string_view content);

}  // namespace vestra::design_tool

#endif
