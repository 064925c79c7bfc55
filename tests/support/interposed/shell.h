#ifndef VESTRA_TESTS_SUPPORT_INTERPOSED_SHELL_H
#define VESTRA_TESTS_SUPPORT_INTERPOSED_SHELL_H

#include <functional>
#include <string>
#include <vector>

namespace vestra_test {

/// Takes the command lines that would go to the shell. The program that links this
/// has a `system` of its own, which asks a real shell while there is no such object.
class RecordingShell {
 public:
  /// @param status  What `system` gives back.
  explicit RecordingShell(int status = 0);
  RecordingShell(const RecordingShell&) = delete;
  RecordingShell& operator=(const RecordingShell&) = delete;
  ~RecordingShell();

  /// Looks at the world as the design tool would find it.
  void whileRunning(std::function<void()> look);

  /// The command lines, byte for byte.
  const std::vector<std::string>& commandLines() const;
};

}  // namespace vestra_test

#endif
