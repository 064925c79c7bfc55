#include "files/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
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

/// @return How many bytes of the text were written.
template <typename Write>
std::size_t writeAll(const std::string& text, Write write) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = uninterrupted([&] { return write(text.data() + written, text.size() - written); });
    if (count <= 0) {
      break;
    }
    written += static_cast<std::size_t>(count);
  }
  return written;
}

}  // namespace

Descriptor::Descriptor(const std::string& path, int flags, mode_t mode) { open(path, flags, mode); }

Descriptor::Descriptor(const std::string& path, int flags, TimeBudget& timeBudget) {
  do {
    open(path, flags, DEFAULT_MODE);
  } while (errorAtOpening == EAGAIN && timeBudget.pause());
}

Descriptor::~Descriptor() {
  if (isOpen()) {
    ::close(number);
  }
}

// Reads one byte more than st_size: a short read means end of file.
std::optional<std::string> Descriptor::read(std::size_t most) const {
  if (!isRegular()) {
    return std::nullopt;
  }
  // NOMUTATE(text, boundary): each byte is overwritten or cut off; any length reads the same text.
  std::string text(std::min(static_cast<std::size_t>(statusAtOpening.st_size) + 1, most), '\0');
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = uninterrupted(
        [&] { return pread(number, &text[size], text.size() - size, static_cast<off_t>(size)); });
    if (count < 0) {
      return std::nullopt;
    }
    size += static_cast<std::size_t>(count);  // NOMUTATE(order): unused after a failure.
    if (count == 0 || size < text.size() || size == most) {
      text.resize(size);
      return text;
    }
    text.resize(std::min(2 * size, most));
  }
}

std::size_t Descriptor::write(const std::string& text) const {
  return writeAll(text, [&](const char* rest, std::size_t size) {
    return pwrite(number, rest, size, static_cast<off_t>(text.size() - size));
  });
}

void Descriptor::append(const std::string& text) const {
  writeAll(text, [&](const char* rest, std::size_t size) { return ::write(number, rest, size); });
}

void Descriptor::open(const std::string& path, int flags, mode_t mode) {
  number =
      uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode); });
  errorAtOpening = isOpen() ? 0 : errno;  // NOMUTATE(order): fstat is for an open file.
  if (isOpen() && fstat(number, &statusAtOpening) != 0) {
    statusAtOpening = {};
  }
}

}  // namespace Oza
