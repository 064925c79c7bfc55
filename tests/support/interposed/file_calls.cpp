#include "support/interposed/file_calls.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <optional>

namespace vestra_test {
namespace {

std::optional<std::uint32_t> fileSystem;
int interruptions = 0;

}  // namespace

ScopedFileSystem::ScopedFileSystem(std::uint32_t type) { fileSystem = type; }

ScopedFileSystem::~ScopedFileSystem() { fileSystem.reset(); }

void interruptOpen(int times) { interruptions = times; }

}  // namespace vestra_test

// The C library's names of parameters are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" int fstatfs(int file, struct statfs* system) noexcept {
  const auto status = static_cast<int>(syscall(SYS_fstatfs, file, system));
  if (status == 0 && vestra_test::fileSystem) {
    system->f_type = *vestra_test::fileSystem;
  }
  return status;
}

extern "C" int open(const char* path, int flags, ...) {
  if (vestra_test::interruptions > 0) {
    --vestra_test::interruptions;
    errno = EINTR;
    return -1;
  }
  // Without these flags there is no such argument to read.
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
