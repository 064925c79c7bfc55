#ifndef VESTRA_TESTS_SUPPORT_SCOPED_CURRENT_DIRECTORY_H
#define VESTRA_TESTS_SUPPORT_SCOPED_CURRENT_DIRECTORY_H

#include <string>

namespace vestra_test {

/// Changes the current directory and goes back at the end.
class ScopedCurrentDirectory {
 public:
  explicit ScopedCurrentDirectory(const std::string& directory);
  ScopedCurrentDirectory(const ScopedCurrentDirectory&) = delete;
  ScopedCurrentDirectory& operator=(const ScopedCurrentDirectory&) = delete;
  ~ScopedCurrentDirectory();

 private:
  int before;
};

}  // namespace vestra_test

#endif
