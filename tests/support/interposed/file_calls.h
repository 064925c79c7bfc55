#ifndef VESTRA_TESTS_SUPPORT_INTERPOSED_FILE_CALLS_H
#define VESTRA_TESTS_SUPPORT_INTERPOSED_FILE_CALLS_H

#include <cstdint>

namespace vestra_test {

/// Makes `fstatfs` name a file system. The program that links this has an `fstatfs` of its
/// own, which asks the kernel while there is no such object.
class ScopedFileSystem {
 public:
  /// @param type  As f_type in statfs(2) has it.
  explicit ScopedFileSystem(std::uint32_t type);
  ScopedFileSystem(const ScopedFileSystem&) = delete;
  ScopedFileSystem& operator=(const ScopedFileSystem&) = delete;
  ~ScopedFileSystem();
};

/// Makes the program's next calls of `open` fail with EINTR.
void interruptOpen(int times);

}  // namespace vestra_test

#endif
