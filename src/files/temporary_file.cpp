#include "files/temporary_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "files/path_text.h"

namespace Oza {
namespace {

constexpr char PREFIX[] = ".vestra-";
constexpr char SUFFIX[] = ".new";
constexpr char DIGITS[] = "0123456789";
constexpr int MOST_NAMES_TRIED = 100;
constexpr int MOST_BLOCKS_OF_NAMES = 4;
constexpr std::time_t SECONDS_UNTIL_STALE = 3600;

std::string nextName() {
  static std::atomic<unsigned int> counter{0};
  return PREFIX + std::to_string(getpid()) + "-" + std::to_string(counter++) + SUFFIX;
}

bool isTemporaryName(const char* name) {
  if (std::strncmp(name, PREFIX, std::strlen(PREFIX)) != 0) {
    return false;
  }
  const char* process = name + std::strlen(PREFIX);
  const char* dash = process + std::strspn(process, DIGITS);
  if (dash == process || *dash != '-') {
    return false;
  }
  const char* counter = dash + 1;
  const char* suffix = counter + std::strspn(counter, DIGITS);
  return suffix != counter && std::strcmp(suffix, SUFFIX) == 0;
}

bool isStale(const Descriptor& directory, const char* name, std::time_t now) {
  struct stat status {};
  return fstatat(directory.get(), name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
         status.st_mtime < now - SECONDS_UNTIL_STALE;
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& target, mode_t mode) : targetPath(target) {
  const std::string directory = directoryOfFile(target);
  int tried = 0;
  do {
    path = directory + nextName();
    descriptor.emplace(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
  } while (!descriptor->isOpen() && errno == EEXIST && ++tried < MOST_NAMES_TRIED);
}

TemporaryFile::~TemporaryFile() {
  if (descriptor->isOpen() && !isRenamed) {
    unlink(path.c_str());
  }
}

bool TemporaryFile::renameToTarget() {
  isRenamed = std::rename(path.c_str(), targetPath.c_str()) == 0;
  return isRenamed;
}

// getdents64 into a buffer on the stack: opendir allocates 32 KiB, two brk calls in every
// report.
void removeStaleTemporaryFiles(const std::string& directory, std::time_t now) {
  const Descriptor descriptor(directory, O_RDONLY | O_DIRECTORY);
  alignas(dirent64) char names[4096];  // NOMUTATE(boundary): getdents64 returns whole entries.
  for (int block = 0; block < MOST_BLOCKS_OF_NAMES; ++block) {
    const long size = syscall(SYS_getdents64, descriptor.get(), names, sizeof names);
    for (long at = 0; at < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(names + at);
      if (isTemporaryName(entry->d_name) && isStale(descriptor, entry->d_name, now)) {
        unlinkat(descriptor.get(), entry->d_name, 0);
      }
      at += entry->d_reclen;  // NOMUTATE(order): `entry` stays where it is.
    }
    if (size <= 0) {
      return;
    }
  }
}

}  // namespace Oza
