#ifndef VESTRA_TESTS_SUPPORT_SPECIAL_FILES_H
#define VESTRA_TESTS_SUPPORT_SPECIAL_FILES_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace vestra_test {

// What can stand where a regular file is expected. Each makes the directories
// above it where they are missing and throws std::system_error on failure.

void makeDirectory(const std::string& path);
void makeNamedPipe(const std::string& path);
/// A Unix-domain socket on which a process listened.
void makeSocket(const std::string& path);
void makeLink(const std::string& path, const std::string& target);

/// What can stand in a file's place and be no file.
struct Obstacle {
  const char* name;
  std::function<void(const std::string& path)> put;
};
const std::vector<Obstacle>& obstacles();

/// Gives a file or directory its permission bits and the old ones back at the end.
class ScopedMode {
 public:
  ScopedMode(std::string path, mode_t mode);
  ScopedMode(const ScopedMode&) = delete;
  ScopedMode& operator=(const ScopedMode&) = delete;
  ~ScopedMode();

 private:
  std::string changed;
  mode_t before;
};

}  // namespace vestra_test

#endif
