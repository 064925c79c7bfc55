#ifndef VESTRA_TESTKIT_SANDBOX_FORKED_PROCESS_H
#define VESTRA_TESTKIT_SANDBOX_FORKED_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vestra::testkit {

/// How a process ended.
struct ProcessEnd {
  std::optional<int> signal;
  std::optional<int> exitStatus;
  bool timedOut = false;
  /// The processes that had not ended with it, and were ended then: their command lines.
  std::vector<std::string> outliving = {};
};

/// A copy of this process that executes a function and leaves through `std::exit`. It reads
/// nothing and prints into two files. A process between the two keeps it: all that it starts, in
/// sessions of their own too, falls to the keeper (PR_SET_CHILD_SUBREAPER), and is ended with it or
/// with this process.
class ForkedProcess {
 public:
  /// @param printed  Its output goes to `printed`.out, its errors to `printed`.err, its end to
  ///                 `printed`.end.
  /// @param body     Must catch what it throws.
  /// @param limit    After which it is ended.
  ForkedProcess(const std::string& printed, std::chrono::milliseconds limit,
                const std::function<void()>& body);
  ForkedProcess(const ForkedProcess&) = delete;
  ForkedProcess& operator=(const ForkedProcess&) = delete;
  /// Ends it with all that it has started.
  ~ForkedProcess();

  /// Waits for its end.
  ProcessEnd wait();

 private:
  std::string endFile;
  pid_t keeper;
  bool reaped = false;
};

}  // namespace vestra::testkit

#endif
