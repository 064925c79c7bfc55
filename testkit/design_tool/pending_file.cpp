#include "pending_file.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "diagnostic.h"

namespace vestra::design_tool {

namespace {

[[noreturn]] void failToWrite(const std::string& path, const std::string& reason) {
  throw DiagnosedError({path, 0, "can't be written: " + reason, "", 0, 0});
}

std::string hiddenNameFor(const std::string& path) {
  const std::filesystem::path place(path);
  return place.parent_path() / fmt::format(".{}.{}", place.filename().string(), ::getpid());
}

}  // namespace

PendingFile::PendingFile(std::string path, std::string_view content)
    : path_(std::move(path)), hidden_path_(hiddenNameFor(path_)) {
  std::ofstream file(hidden_path_, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) {
    return;
  }
  const std::string reason = std::strerror(errno);
  ::unlink(hidden_path_.c_str());
  failToWrite(path_, reason);
}

PendingFile::~PendingFile() {
  if (!is_committed_) {
    ::unlink(hidden_path_.c_str());
  }
}

void PendingFile::commit() {
  std::error_code error;
  std::filesystem::rename(hidden_path_, path_, error);
  if (error) {
    failToWrite(path_, error.message());
  }
  is_committed_ = true;
}

}  // namespace vestra::design_tool
