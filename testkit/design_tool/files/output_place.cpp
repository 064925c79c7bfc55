#include "design_tool/files/output_place.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {
namespace {

constexpr int DIRECTORY = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void fail(const std::string& path, const std::string& message) {
  throw DiagnosedError({path, 0, message, "", 0, 0});
}

[[noreturn]] void failToWrite(const std::string& path, int error) {
  fail(path, std::string("cannot be written: ") + std::strerror(error));
}

FileIdentity identityOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

FileIdentity identityOf(const Descriptor& directory) {
  struct stat status = {};
  ::fstat(directory.get(), &status);
  return identityOf(status);
}

Descriptor openParent(const std::string& path) {
  const std::string parent = std::filesystem::path(path).parent_path().string();
  return Descriptor(::open(parent.empty() ? "." : parent.c_str(), DIRECTORY));
}

const char* kindOf(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFDIR:
      return "is a directory, not a file";
    case S_IFLNK:
      return "is a link, which is not followed";
    default:
      return "is not a regular file";
  }
}

}  // namespace

std::optional<FileIdentity> identityOf(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? std::optional(identityOf(status)) : std::nullopt;
}

OutputPlace::OutputPlace(std::string target, const std::string& root)
    : outputPath(std::move(target)),
      fileName(std::filesystem::path(outputPath).filename().string()),
      parent(openParent(outputPath)) {
  if (!parent.isOpen()) {
    failToWrite(outputPath, errno);
  }
  refuseToLeave(root);
  lookAtWhatStandsHere();
}

bool OutputPlace::isSameAs(const OutputPlace& other) const {
  const bool haveOneName = fileName == other.fileName && identityOf(parent) == identityOf(other.parent);
  return haveOneName || isSameAs(other.standing);
}

/// Goes up to the root of all files, by the directories themselves rather than by their names.
void OutputPlace::refuseToLeave(const std::string& root) const {
  const Descriptor wanted(::open(root.c_str(), DIRECTORY));
  Descriptor directory(::openat(parent.get(), ".", DIRECTORY));
  while (wanted.isOpen() && directory.isOpen() && identityOf(directory) != identityOf(wanted)) {
    Descriptor above(::openat(directory.get(), "..", DIRECTORY));
    if (!above.isOpen() || identityOf(above) == identityOf(directory)) {
      break;
    }
    directory = std::move(above);
  }
  if (!wanted.isOpen() || !directory.isOpen() || identityOf(directory) != identityOf(wanted)) {
    fail(outputPath, "does not lie below the directory of vestra_init, " + reading::inQuotes(root));
  }
}

void OutputPlace::lookAtWhatStandsHere() {
  struct stat status = {};
  if (::fstatat(parent.get(), fileName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT && !fileName.empty()) {
      return;
    }
    failToWrite(outputPath, errno);
  }
  if (!S_ISREG(status.st_mode)) {
    fail(outputPath, kindOf(status.st_mode));
  }
  standing = identityOf(status);
}

}  // namespace vestra::design_tool
