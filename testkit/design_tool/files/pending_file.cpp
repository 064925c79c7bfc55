#include "design_tool/files/pending_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include <unistd.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"

namespace vestra::design_tool {
namespace {

[[noreturn]] void failToWrite(const std::string& path, const std::string& reason) {
  throw DiagnosedError({path, 0, "cannot be written: " + reason, "", 0, 0});
}

std::string hiddenNameFor(const std::string& path) {
  const std::filesystem::path place(path);
  return place.parent_path() / fmt::format(".{}.{}", place.filename().string(), ::getpid());
}

}  // namespace

PendingFile::PendingFile(std::string target, std::string_view content)
    : path(std::move(target)), hiddenPath(hiddenNameFor(path)) {
  std::ofstream file(hiddenPath, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) {
    return;
  }
  const std::string reason = std::strerror(errno);
  ::unlink(hiddenPath.c_str());
  failToWrite(path, reason);
}

PendingFile::~PendingFile() {
  if (!isCommitted) {
    ::unlink(hiddenPath.c_str());
  }
}

void PendingFile::commit() {
  std::error_code error;
  std::filesystem::rename(hiddenPath, path, error);
  if (error) {
    failToWrite(path, error.message());
  }
  isCommitted = true;
}

}  // namespace vestra::design_tool
