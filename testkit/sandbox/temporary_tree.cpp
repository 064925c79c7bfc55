#include "sandbox/temporary_tree.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <stdexcept>
#include <vector>

#include <boost/filesystem.hpp>

#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

constexpr const char* BEGINNING = "vestra-testkit-";
// In a directory that outlives its owner on purpose: empty, or when it was kept for a while.
constexpr const char* KEPT = "/kept";
constexpr std::size_t KEPT_FOR_A_WHILE = 10;

void allowAll(const std::string& directory) {
  boost::system::error_code ignored;
  fs::permissions(directory, fs::owner_all | fs::add_perms, ignored);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, ignored)) {
    if (fs::is_directory(entry.symlink_status(ignored))) {
      allowAll(entry.path().string());
    }
  }
}

void removeTree(const std::string& directory) {
  boost::system::error_code error;
  fs::remove_all(directory, error);
  if (error) {
    allowAll(directory);
    fs::remove_all(directory, error);
  }
  if (error) {
    std::cerr << "vestra::testkit cannot remove " << directory << ": " << error.message() << '\n';
  }
}

/// The directory's descriptor with its lock; -1 when it is gone or locked by another.
int lockOf(const std::string& directory) {
  const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

bool isUsers(const std::string& directory) {
  struct stat status {};
  return lstat(directory.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

void removeIfStale(const std::string& directory) {
  if (!isUsers(directory) || fs::exists(directory + KEPT)) {
    return;
  }
  const int lock = lockOf(directory);
  // One whose permissions forbid even that is nobody's either.
  if (lock >= 0) {
    removeTree(directory);
    close(lock);
  } else if (errno == EACCES) {
    removeTree(directory);
  }
}

std::vector<std::string> treesIn(const fs::path& parent) {
  std::vector<std::string> trees;
  boost::system::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator(parent, ignored)) {
    if (entry.path().filename().string().rfind(BEGINNING, 0) == 0) {
      trees.push_back(entry.path().string());
    }
  }
  return trees;
}

void removeStaleTreesOnceIn(const fs::path& parent) {
  static pid_t sweeper = 0;
  if (sweeper != getpid()) {
    sweeper = getpid();
    for (const std::string& tree : treesIn(parent)) {
      removeIfStale(tree);
    }
  }
}

/// The user's trees that were kept for a while, by the time of that.
std::multimap<std::int64_t, std::string> keptForAWhileIn(const fs::path& parent) {
  std::multimap<std::int64_t, std::string> kept;
  for (const std::string& tree : treesIn(parent)) {
    const std::string time = isUsers(tree) ? bytesOf(tree + KEPT).value_or("") : "";
    if (!time.empty()) {
      kept.emplace(std::strtoll(time.c_str(), nullptr, 10), tree);
    }
  }
  return kept;
}

std::string makeDirectoryIn(const fs::path& parent) {
  std::string path = (parent / (std::string(BEGINNING) + "XXXXXX")).string();
  if (mkdtemp(path.data()) == nullptr) {
    throw std::runtime_error("the sandbox cannot make a directory in " + parent.string() + ": " +
                             std::strerror(errno));
  }
  return path;
}

}  // namespace

TemporaryTree::TemporaryTree() {
  const fs::path parent = fs::canonical(fs::temp_directory_path());
  removeStaleTreesOnceIn(parent);
  // Until it is locked, another owner may take it for stale.
  while (lock < 0) {
    directory = makeDirectoryIn(parent);
    lock = lockOf(directory);
    if (lock >= 0 && !isUsers(directory)) {
      close(lock);
      lock = -1;
    }
  }
}

TemporaryTree::~TemporaryTree() {
  if (!isKept) {
    removeTree(directory);
  }
  close(lock);
}

void TemporaryTree::keep() {
  isKept = true;
  writeBytes(directory + KEPT, "");
}

void TemporaryTree::keepForAWhile() {
  keep();
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  writeBytes(directory + KEPT, std::to_string(std::chrono::nanoseconds(now).count()));
  auto kept = keptForAWhileIn(fs::path(directory).parent_path());
  for (; kept.size() > KEPT_FOR_A_WHILE; kept.erase(kept.begin())) {
    removeTree(kept.begin()->second);
  }
}

}  // namespace vestra::testkit
