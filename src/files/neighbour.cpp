#include "files/neighbour.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include <boost/algorithm/string/predicate.hpp>

#include "files/file_lock.h"

namespace Oza {
namespace {

constexpr const char* PREFIX = ".vestra-";
constexpr const char* SUFFIX = ".new";
constexpr std::time_t SECONDS_TO_WRITE = 3600;

std::string directoryOfFile(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

/// A name that no other process uses, and this one only once: made of the time and of
/// where the system has put this process's stack.
std::string newName() {
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return PREFIX + std::to_string(now) + "-" + std::to_string(reinterpret_cast<std::uintptr_t>(&now)) + SUFFIX;
}

bool isNeighboursName(const std::string& name) {
  return boost::algorithm::starts_with(name, PREFIX) && boost::algorithm::ends_with(name, SUFFIX);
}

/// Whether the process that made the file has ended. Without locks, a file that nobody
/// has written for an hour counts as left behind.
bool isLeftBehind(const Descriptor& file, bool locks) {
  if (!file.isOpen()) {
    return false;
  }
  return locks ? flock(file.get(), LOCK_EX | LOCK_NB) == 0
               : file.status().st_mtime < std::time(nullptr) - SECONDS_TO_WRITE;
}

void removeIfLeftBehind(const std::string& path, bool locks) {
  if (isLeftBehind(Descriptor(path, O_RDONLY | O_NOFOLLOW), locks)) {
    unlink(path.c_str());
  }
}

// Not by readdir, which allocates a buffer that makes the heap grow and shrink.
/// @return Whether the directory's file system has locks that answer at once.
bool removeLeftovers(const std::string& directory) {
  const Descriptor descriptor(directory, O_RDONLY | O_DIRECTORY);
  const bool locks = answersLocksAtOnce(descriptor.get());
  alignas(dirent64) char entries[4096];
  for (long size = 0; (size = syscall(SYS_getdents64, descriptor.get(), entries, sizeof entries)) > 0;) {
    for (long at = 0; at < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
      if (isNeighboursName(entry->d_name)) {
        removeIfLeftBehind(directory + entry->d_name, locks);
      }
      at += entry->d_reclen;
    }
  }
  return locks;
}

}  // namespace

Neighbour::Neighbour(const std::string& path)
    : target(path),
      locks(removeLeftovers(directoryOfFile(path))),
      name(directoryOfFile(path) + newName()),
      descriptor(name, O_WRONLY | O_CREAT | O_EXCL),
      hasOwnName(descriptor.isOpen()) {
  if (hasOwnName && locks) {
    flock(descriptor.get(), LOCK_EX | LOCK_NB);
  }
}

Neighbour::~Neighbour() {
  if (hasOwnName) {
    unlink(name.c_str());
  }
}

bool Neighbour::rename() {
  hasOwnName = std::rename(name.c_str(), target.c_str()) != 0;
  return !hasOwnName;
}

}  // namespace Oza
