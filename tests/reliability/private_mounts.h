#ifndef VESTRA_TESTS_RELIABILITY_PRIVATE_MOUNTS_H
#define VESTRA_TESTS_RELIABILITY_PRIVATE_MOUNTS_H

#include <optional>
#include <string>
#include <vector>

namespace vestra_test {

/// File systems that only this process and its children see, which go at the end.
class PrivateMounts {
 public:
  PrivateMounts();
  PrivateMounts(const PrivateMounts&) = delete;
  PrivateMounts& operator=(const PrivateMounts&) = delete;
  ~PrivateMounts();

  /// Why nothing can be mounted here; nothing when it can.
  const std::optional<std::string>& whyNot() const { return obstacle; }

  // Each throws std::system_error on failure.

  /// An empty file system in memory in a directory's place.
  void mountMemory(const std::string& directory, const std::string& options = "");
  void makeReadOnly(const std::string& directory);
  void unmount(const std::string& directory);

 private:
  std::optional<std::string> obstacle;
  std::vector<std::string> mounted;
};

/// Fills the file system to the last byte.
void fill(const std::string& directory);
/// Removes what `fill` wrote.
void makeRoom(const std::string& directory);

}  // namespace vestra_test

#endif
