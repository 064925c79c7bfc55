#include "design_tool/files/output_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void failToWrite(const fs::path& path, int error) {
  throw DiagnosedError(path.string(), std::string("cannot be written: ") + std::strerror(error));
}

fs::path directoryOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : "."; }

bool isBelow(const fs::path& directory, const fs::path& root) {
  return std::mismatch(root.begin(), root.end(), directory.begin(), directory.end()).first == root.end();
}

/// Mode x is O_EXCL: a file or link that somebody has put there is neither followed nor overwritten.
bool writeNewFile(const char* path, std::string_view content) {
  std::FILE* const file = std::fopen(path, "wxe");
  if (file == nullptr) {
    return false;
  }
  const bool isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size();
  const int error = errno;
  const bool isClosed = std::fclose(file) == 0;
  errno = isWritten ? errno : error;
  return isWritten && isClosed;
}

}  // namespace

void checkOutput(const fs::path& path, const std::string& root) {
  std::error_code error;
  const fs::path directory = fs::canonical(directoryOf(path), error);
  if (error || path.filename().empty()) {
    failToWrite(path, error ? error.value() : EISDIR);
  }
  const fs::path canonicalRoot = fs::canonical(root, error);
  if (error || !isBelow(directory, canonicalRoot)) {
    throw DiagnosedError(path.string(),
                         "does not lie below the directory of vestra_init, " + reading::inQuotes(root));
  }
  const fs::file_status status = fs::symlink_status(path, error);
  if (exists(status) && !is_regular_file(status)) {
    throw DiagnosedError(path.string(), is_directory(status) ? "is a directory, not a file"
                                        : is_symlink(status) ? "is a link, which is not followed"
                                                             : "is not a regular file");
  }
}

bool isSameFile(const fs::path& one, const fs::path& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) ||
         (one.filename() == other.filename() && fs::equivalent(directoryOf(one), directoryOf(other), error));
}

void replaceFile(const fs::path& path, std::string_view content) {
  const fs::path temporary = directoryOf(path) / fmt::format(".{}.{}", path.filename().string(), ::getpid());
  ::unlink(temporary.c_str());
  if (writeNewFile(temporary.c_str(), content) && std::rename(temporary.c_str(), path.c_str()) == 0) {
    return;
  }
  const int error = errno;
  ::unlink(temporary.c_str());
  failToWrite(path, error);
}

}  // namespace vestra::design_tool
