#include "files/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "files/descriptor.h"
#include "files/path_text.h"
#include "files/permissions.h"
#include "files/sigxfsz_guard.h"
#include "files/temporary_file.h"

namespace Oza {
namespace {

constexpr mode_t PRIVATE = 0600;
constexpr mode_t READ_AND_WRITE_FOR_ALL = 0666;

bool isOwn(const struct stat& status) { return status.st_uid == geteuid(); }

/// Whether rename(2) may replace a file. Another user's file is always replaced, unless it
/// is a symbolic link: that user could change what the design tool executes. Our own is
/// replaced where writing in place would give the same: regular, without hard links, not
/// read-only.
bool mayBeReplaced(const struct stat& old) {
  if (!isOwn(old)) {
    return !S_ISLNK(old.st_mode);
  }
  return S_ISREG(old.st_mode) && old.st_nlink <= 1 && (old.st_mode & S_IWUSR) != 0;
}

// The mode is 0600 until the old file's permissions are copied: an ACL inherited from the
// directory must let nobody open the file before. Stale files are compared with the new
// file's st_mtime, not with the system clock: a file server's clock may differ.
bool replaceByRename(const std::string& path, const std::string& text) {
  struct stat old {};
  const bool exists = lstat(path.c_str(), &old) == 0;
  if (exists ? !mayBeReplaced(old) : errno != ENOENT) {
    return false;
  }
  const bool keepsPermissions = exists && isOwn(old);
  TemporaryFile temporary(path, keepsPermissions ? PRIVATE : READ_AND_WRITE_FOR_ALL);
  if (!temporary.file().isOpen()) {
    return false;
  }
  const bool isReplaced = (!keepsPermissions || copyPermissions(path, old, temporary.file())) &&
                          temporary.file().write(text) == text.size() && temporary.renameToTarget();
  removeStaleTemporaryFiles(directoryOfFile(path), temporary.file().status().st_mtime);
  return isReplaced;
}

void writeInPlace(const std::string& path, const std::string& text) {
  struct stat old {};
  if (stat(path.c_str(), &old) != 0 || !S_ISFIFO(old.st_mode)) {
    Descriptor(path, O_WRONLY | O_CREAT | O_TRUNC).write(text);
  }
}

}  // namespace

void replaceFile(const std::string& path, const std::string& text) {
  SigxfszGuard guard;
  if (replaceByRename(path, text)) {
    guard.endWithoutSignal();
  } else {
    writeInPlace(path, text);
  }
}

bool fileHolds(const std::string& path, const std::string& text) {
  const Descriptor file(path, O_RDONLY);
  return file.status().st_size == static_cast<off_t>(text.size()) && file.read() == text;
}

}  // namespace Oza
