#include "design_tool/files/new_file.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <fmt/format.h>

#include "design_tool/files/descriptor.h"

namespace vestra::design_tool {
namespace {

int writeAll(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(file, content.data(), content.size());
    if (count >= 0) {
      content.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

int writeNewFile(int directory, const std::string& name, std::string_view content) {
  const Descriptor file(
      ::openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (!file.isOpen()) {
    return errno;
  }
  const int error = writeAll(file.get(), content);
  if (error != 0) {
    ::unlinkat(directory, name.c_str(), 0);
  }
  return error;
}

std::string unpredictableName() {
  std::uint64_t number = 0;
  if (::getrandom(&number, sizeof number, 0) != sizeof number) {
    throw std::system_error(errno, std::generic_category(), "getrandom");
  }
  return fmt::format(".vestra-{:016x}", number);
}

}  // namespace vestra::design_tool
