#include "files/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace Oza {
namespace {

/// Repeats a system call that a signal has interrupted.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

}  // namespace

Descriptor::Descriptor(const std::string& path, int flags, mode_t mode)
    : number(uninterrupted(
          [&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode); })) {
  if (isOpen() && fstat(number, &statusAtOpening) != 0) {
    statusAtOpening = {};
  }
}

Descriptor::~Descriptor() {
  if (isOpen()) {
    ::close(number);
  }
}

// One byte more than the file had: where that stays free, the end has been reached.
std::optional<std::string> Descriptor::read() const {
  if (!isRegular()) {
    return std::nullopt;
  }
  std::string text(static_cast<std::size_t>(statusAtOpening.st_size) + 1, '\0');
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = uninterrupted(
        [&] { return pread(number, &text[size], text.size() - size, static_cast<off_t>(size)); });
    if (count < 0) {
      return std::nullopt;
    }
    size += static_cast<std::size_t>(count);
    if (count == 0 || size < text.size()) {
      text.resize(size);
      return text;
    }
    text.resize(2 * size);
  }
}

std::size_t Descriptor::write(const std::string& text, std::size_t offset) const {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = uninterrupted([&] {
      return pwrite(number, &text[written], text.size() - written, static_cast<off_t>(offset + written));
    });
    if (count <= 0) {
      break;
    }
    written += static_cast<std::size_t>(count);
  }
  return written;
}

}  // namespace Oza
