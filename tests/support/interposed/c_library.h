#ifndef VESTRA_TESTS_SUPPORT_INTERPOSED_C_LIBRARY_H
#define VESTRA_TESTS_SUPPORT_INTERPOSED_C_LIBRARY_H

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vestra_test {

// The program that links these has functions of its own in the place of the C library's.

/// Makes `time` give one moment. Without such an object it tells the real time.
class ScopedTime {
 public:
  explicit ScopedTime(std::time_t moment);
  ScopedTime(const ScopedTime&) = delete;
  ScopedTime& operator=(const ScopedTime&) = delete;
  ~ScopedTime();
};

/// Makes `getdomainname` answer. Without such an object it fails.
class ScopedDomainName {
 public:
  /// @param name  Nothing makes the call fail.
  explicit ScopedDomainName(std::optional<std::string> name);
  ScopedDomainName(const ScopedDomainName&) = delete;
  ScopedDomainName& operator=(const ScopedDomainName&) = delete;
  ~ScopedDomainName();

  /// How often it was asked.
  int calls() const;
};

/// Takes the command lines that `system` would give to the shell. Without such an object it
/// fails.
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
