#ifndef VESTRA_TESTKIT_RECORDER_BYTES_H
#define VESTRA_TESTKIT_RECORDER_BYTES_H

#include <optional>
#include <string>
#include <vector>

namespace vestra::testkit {

/// The bytes of a regular file; nothing when there is none or it cannot be read.
std::optional<std::string> bytesOf(const std::string& path);

/// Replaces a file.
///
/// @throws std::runtime_error when it cannot be written
void writeBytes(const std::string& path, const std::string& bytes);

/// The text's lines without their line ends; a last line needs none.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace vestra::testkit

#endif
