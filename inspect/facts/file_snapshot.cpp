#include "facts/file_snapshot.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include <fmt/format.h>

namespace vestra::inspect {
namespace {

FileKind kindOf(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return FileKind::regular;
    case S_IFDIR:
      return FileKind::directory;
    case S_IFIFO:
      return FileKind::pipe;
    case S_IFSOCK:
      return FileKind::socket;
    default:
      return FileKind::device;
  }
}

bool may(const std::string& path, int access) {
  return faccessat(AT_FDCWD, path.c_str(), access, AT_EACCESS) == 0;
}

std::optional<std::string> linkAt(const std::string& path) {
  std::array<char, 4096> target{};
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  return length < 0 ? std::nullopt
                    : std::optional(std::string(target.data(), static_cast<std::size_t>(length)));
}

void note(const struct stat& status, FileSnapshot& file) {
  file.kind = kindOf(status.st_mode);
  file.mode = status.st_mode & 07777;
  file.owner = status.st_uid;
  file.size = status.st_size;
  file.modified = status.st_mtim.tv_sec;
  file.modifiedNanoseconds = status.st_mtim.tv_nsec;
  file.writable = may(file.path, W_OK);
  file.readable = may(file.path, R_OK);
}

// What is reserved takes no memory before bytes are there.
std::optional<std::string> readUpTo(int descriptor, std::size_t limit) {
  std::string text;
  struct stat status {};
  if (fstat(descriptor, &status) == 0) {
    text.reserve(std::min(limit, static_cast<std::size_t>(status.st_size)));
  }
  std::array<char, 65536> piece{};
  while (text.size() < limit) {
    const ssize_t length = read(descriptor, piece.data(), std::min(piece.size(), limit - text.size()));
    if (length <= 0) {
      return length < 0 ? std::nullopt : std::optional(std::move(text));
    }
    text.append(piece.data(), static_cast<std::size_t>(length));
  }
  return text;
}

bool isRegularFile(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool isEmptyDirectory(const std::string& path) {
  DIR* directory = opendir(path.c_str());
  int entries = 0;
  while (directory != nullptr && entries < 3 && readdir(directory) != nullptr) {
    ++entries;
  }
  if (directory != nullptr) {
    closedir(directory);
  }
  return entries == 2;
}

/// Free inodes. Space for the bytes does not matter: a file is created all the same.
bool hasRoomForNames(const std::string& directory) {
  struct statvfs system {};
  return statvfs(directory.c_str(), &system) != 0 || system.f_files == 0 || system.f_favail != 0;
}

/// In a sticky directory only the owner may remove a file.
bool stickinessForbids(const std::string& path, const struct stat& file) {
  struct stat directory {};
  if (stat(parentOf(path).c_str(), &directory) != 0 || (directory.st_mode & S_ISVTX) == 0) {
    return false;
  }
  return geteuid() != 0 && geteuid() != file.st_uid && geteuid() != directory.st_uid;
}

}  // namespace

// A file's time may be a tick ahead of the clock that tells a process the second. A stored
// second may be the greatest that there is.
bool FileSnapshot::isYoungerThan(std::int64_t moment) const {
  constexpr std::int64_t TICK = 10000000;
  return modified - 1 > moment || (modified - 1 == moment && modifiedNanoseconds >= TICK);
}

FileSnapshot lookAt(const std::string& path) {
  FileSnapshot file;
  file.path = path;
  file.link = linkAt(path);
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) {
    note(status, file);
  } else if (errno != ENOENT && errno != ENOTDIR) {
    file.kind = FileKind::unknown;
    file.error = errno;
  }
  return file;
}

// What is opened may be another file than the one that was looked at.
FileSnapshot readFileAt(const std::string& path, std::size_t limit) {
  FileSnapshot file = lookAt(path);
  if (!file.isRegular()) {
    return file;
  }
  const int descriptor = openToLook(path);
  if (descriptor >= 0 && isRegularFile(descriptor)) {
    file.text = readUpTo(descriptor, limit);
  }
  file.readError = file.text ? 0 : errno;
  if (descriptor >= 0) {
    close(descriptor);
  }
  return file;
}

bool FileSnapshot::isUnreadable() const { return isRegular() && readError == EACCES; }

// Only a file's owner may leave its access time alone.
int openToLook(const std::string& path) {
  constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const int descriptor = open(path.c_str(), flags | O_NOATIME);
  return descriptor < 0 && errno == EPERM ? open(path.c_str(), flags) : descriptor;
}

std::string parentOf(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  const std::size_t slash = path.find_last_of('/', end);
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool mayChangeDirectory(const std::string& directory) { return may(directory, W_OK | X_OK); }

bool canCreateTarget(const FileSnapshot& link) {
  constexpr int longestChain = 40;
  std::string path = link.path;
  for (int i = 0; i < longestChain; ++i) {
    const auto target = linkAt(path);
    if (!target) {
      const std::string directory = parentOf(path);
      return lookAt(directory).kind == FileKind::directory && mayChangeDirectory(directory) &&
             hasRoomForNames(directory);
    }
    path = target->front() == '/' ? *target : parentOf(path) + "/" + *target;
  }
  return false;
}

bool canHoldFiles(const std::string& directory, std::string& obstacle) {
  // With its final slash, a file in the directory's place would seem to be missing.
  std::string nearest = directory.substr(0, directory.find_last_not_of('/') + 1);
  while (lookAt(nearest).kind == FileKind::missing && nearest != "/" && nearest != ".") {
    if (lookAt(nearest).link) {
      break;
    }
    nearest = parentOf(nearest);
  }
  obstacle = nearest;
  return lookAt(nearest).kind == FileKind::directory && mayChangeDirectory(nearest) &&
         hasRoomForNames(nearest);
}

bool canBeRemoved(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) {
    return errno == ENOENT || errno == ENOTDIR;
  }
  if (S_ISDIR(status.st_mode) && !isEmptyDirectory(path)) {
    return false;
  }
  return mayChangeDirectory(parentOf(path)) && !stickinessForbids(path, status);
}

const char* nameOf(FileKind kind) {
  constexpr std::array<const char*, 7> names = {"missing", "regular", "directory", "pipe",
                                                "socket",  "device",  "unknown"};
  return names.at(static_cast<std::size_t>(kind));
}

std::string modeText(mode_t mode) { return fmt::format("{:04o}", mode); }

}  // namespace vestra::inspect
