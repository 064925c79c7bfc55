#ifndef VESTRA_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define VESTRA_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <string>

namespace vestra_test {

/// An empty directory of its own, removed with all that is in it at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  /// Absolute, without links in it and without a final slash.
  const std::string& path() const { return directory; }
  /// The path of something in it.
  std::string operator/(const std::string& name) const { return directory + "/" + name; }

 private:
  std::string directory;
};

}  // namespace vestra_test

#endif
