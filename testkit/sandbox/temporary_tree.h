#ifndef VESTRA_TESTKIT_SANDBOX_TEMPORARY_TREE_H
#define VESTRA_TESTKIT_SANDBOX_TEMPORARY_TREE_H

#include <string>

namespace vestra::testkit {

/// A directory for temporary files that is removed with its owner or, when that was
/// killed, by the next owner of the same user: it is locked while its owner lives.
class TemporaryTree {
 public:
  /// Removes what killed owners have left, once in a process, and makes the directory.
  ///
  /// @throws std::runtime_error when it cannot be made
  TemporaryTree();
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;
  /// Removes the directory with all that is in it, whatever its permissions, unless it
  /// is to be kept.
  ~TemporaryTree();

  /// From now on neither this owner nor another removes it.
  void keep();

  /// The same until ten more of the user's have been kept so.
  void keepForAWhile();

  /// Absolute and without links.
  const std::string& path() const { return directory; }

 private:
  std::string directory;
  int lock = -1;
  bool isKept = false;
};

}  // namespace vestra::testkit

#endif
