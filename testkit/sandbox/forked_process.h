#ifndef VESTRA_TESTKIT_SANDBOX_FORKED_PROCESS_H
#define VESTRA_TESTKIT_SANDBOX_FORKED_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace vestra::testkit {

/// How a process ended.
struct ProcessEnd {
  std::optional<int> signal;
  std::optional<int> exitStatus;
  bool timedOut = false;
};

/// A copy of this process that executes a function and leaves through `std::exit`.
/// It reads nothing, prints into two files, leads a process group of its own and
/// does not outlive its parent.
class ForkedProcess {
 public:
  /// @param printed  Its output goes to `printed`.out, its errors to `printed`.err.
  /// @param body     Must catch what it throws.
  ForkedProcess(const std::string& printed, const std::function<void()>& body);
  ForkedProcess(const ForkedProcess&) = delete;
  ForkedProcess& operator=(const ForkedProcess&) = delete;
  /// Ends it with all that it has started.
  ~ForkedProcess();

  /// Waits for its end; at the deadline, ends it with all that it has started.
  ProcessEnd wait(std::chrono::steady_clock::time_point deadline);

 private:
  bool hasEndedBy(std::chrono::steady_clock::time_point deadline) const;

  pid_t process;
  bool reaped = false;
};

}  // namespace vestra::testkit

#endif
