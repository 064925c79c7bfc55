#ifndef VESTRA_TESTS_SUPPORT_FILES_H
#define VESTRA_TESTS_SUPPORT_FILES_H

#include <chrono>
#include <string>
#include <vector>

namespace vestra_test {

/// The bytes of a file. Throws std::runtime_error when it cannot be read.
std::string readFile(const std::string& path);

/// Replaces a file, making its directories where they are missing.
void writeFile(const std::string& path, const std::string& bytes);

/// The lines of a text, without their ends.
std::vector<std::string> linesIn(const std::string& text);

/// Sets when a file was last read and written.
void dateFile(const std::string& path, std::chrono::system_clock::time_point time);

/// Whether anything stands at the path, a dangling link included.
bool exists(const std::string& path);

/// Names of what stands in a directory, sorted; empty for a missing one.
std::vector<std::string> namesIn(const std::string& directory);

}  // namespace vestra_test

#endif
