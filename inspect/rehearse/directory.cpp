#include "rehearse/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace vestra::inspect {
namespace {

constexpr off_t LARGEST_FILE = 256 << 20;
constexpr int DIRECTORY_FLAGS = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void fail(const std::string& name) {
  throw std::runtime_error(name + ": " + std::strerror(errno));
}

/// The rest of a file; nothing when reading fails.
std::optional<std::string> rest(int file) {
  std::string text;
  char piece[65536];
  ssize_t length = 0;
  while ((length = ::read(file, piece, sizeof piece)) > 0) {
    text.append(piece, static_cast<std::size_t>(length));
  }
  return length < 0 ? std::nullopt : std::optional(std::move(text));
}

bool writeTo(int file, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t length = ::write(file, text.data() + done, text.size() - done);
    if (length < 0) {
      return false;
    }
    done += static_cast<std::size_t>(length);
  }
  return true;
}

}  // namespace

Directory::Directory(const std::string& path) : descriptor(open(path.c_str(), DIRECTORY_FLAGS)) {
  if (descriptor < 0) {
    fail(path);
  }
}

Directory::Directory(Directory&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}

Directory::~Directory() { close(descriptor); }

struct stat Directory::status() const {
  struct stat status {};
  fstat(descriptor, &status);
  return status;
}

std::optional<Directory> Directory::enter(const std::string& name) const {
  const int opened = openat(descriptor, name.c_str(), DIRECTORY_FLAGS | O_NOFOLLOW);
  return opened < 0 ? std::nullopt : std::optional(Directory(opened));
}

Directory Directory::make(const std::string& name, mode_t mode) const {
  if (mkdirat(descriptor, name.c_str(), S_IRWXU) != 0) {
    fail(name);
  }
  auto made = enter(name);
  if (!made || made->status().st_uid != geteuid() || fchmod(made->descriptor, mode) != 0) {
    fail(name);
  }
  return std::move(*made);
}

std::optional<std::string> Directory::read(const std::string& name) const {
  const int file =
      openat(descriptor, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  struct stat status {};
  const bool isRead =
      file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= LARGEST_FILE;
  auto text = isRead ? rest(file) : std::nullopt;
  close(file);
  return text;
}

void Directory::write(const std::string& name, const std::string& text) const {
  const int file =
      openat(descriptor, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  const bool isWritten = file >= 0 && writeTo(file, text);
  if (!isWritten) {
    fail(name);
  }
  close(file);
}

void Directory::remove(const std::string& name) const {
  if (unlinkat(descriptor, name.c_str(), 0) == 0) {
    return;
  }
  // A working copy may forbid its owner what its original does.
  static_cast<void>(!fchmodat(descriptor, name.c_str(), S_IRWXU, 0));
  if (const auto directory = enter(name)) {
    directory->removeContent();
  }
  unlinkat(descriptor, name.c_str(), AT_REMOVEDIR);
}

void Directory::removeContent() const {
  DIR* entries = fdopendir(openat(descriptor, ".", DIRECTORY_FLAGS));
  while (const dirent* entry = entries != nullptr ? readdir(entries) : nullptr) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") {
      remove(name);
    }
  }
  if (entries != nullptr) {
    closedir(entries);
  }
}

}  // namespace vestra::inspect
