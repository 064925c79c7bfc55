#include "design_tool/files/input_file.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/descriptor.h"

namespace vestra::design_tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& message) {
  throw DiagnosedError({path, 0, message, "", 0, 0});
}

[[noreturn]] void failToRead(const std::string& path) {
  fail(path, std::string("cannot be read: ") + std::strerror(errno));
}

void checkIsRegular(const Descriptor& file, const std::string& path) {
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0) {
    failToRead(path);
  }
  if (S_ISDIR(status.st_mode)) {
    fail(path, "is a directory, not a file");
  }
  if (!S_ISREG(status.st_mode)) {
    fail(path, "is not a regular file");
  }
}

}  // namespace

std::string readRegularFile(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (file.get() < 0) {
    failToRead(path);
  }
  checkIsRegular(file, path);
  std::string bytes;
  char buffer[65536];
  for (;;) {
    const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
    if (count == 0) {
      return bytes;
    }
    if (count > 0) {
      bytes.append(buffer, static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      failToRead(path);
    }
  }
}

std::time_t modificationTimeOf(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mtime : std::time(nullptr);
}

}  // namespace vestra::design_tool
