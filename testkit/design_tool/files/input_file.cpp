#include "design_tool/files/input_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "design_tool/diagnosis/diagnostic.h"

namespace vestra::design_tool {

std::string readRegularFile(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (is_directory(status)) {
    throw DiagnosedError(path, "is a directory, not a file");
  }
  if (exists(status) && !is_regular_file(status)) {
    throw DiagnosedError(path, "is not a regular file");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (errno != 0) {
    throw DiagnosedError(path, std::string("cannot be read: ") + std::strerror(errno));
  }
  return bytes;
}

}  // namespace vestra::design_tool
