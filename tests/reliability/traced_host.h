#ifndef VESTRA_TESTS_RELIABILITY_TRACED_HOST_H
#define VESTRA_TESTS_RELIABILITY_TRACED_HOST_H

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <vestra/vestra.h>

namespace vestra_test {

/// One system call of a host, as it enters the kernel.
struct SystemCall {
  long number = -1;
  /// The file that it is about: its path as the host wrote it, or where its
  /// descriptor leads. Empty for a call about no file.
  std::string subject;
};

std::ostream& operator<<(std::ostream& out, const SystemCall& call);

/// What happens to a host at one of its system calls, counted from 0 where its use
/// of the library begins.
struct Disturbance {
  enum Kind {
    NONE,
    /// Nothing either, but the calls are listed.
    WATCH,
    /// The call does nothing and fails with `error`. Only `close` is done all the
    /// same, as Linux does it.
    FAIL,
    /// The same, and the next one that is of its kind and about the same file fails too.
    FAIL_TWICE,
    /// The host is killed instead of entering the kernel.
    KILL,
    /// The call is made after `deed`, which stands for another process's doing.
    MEDDLE
  };
  Kind kind = NONE;
  std::size_t call = 0;
  int error = 0;
  std::function<void()> deed = [] {};
};

/// How to start the host.
struct HostStart {
  /// Another host's program than the usual one; one that does nothing stops itself
  /// where its use of the library would begin, and goes on to its end.
  std::string program = RELIABILITY_HOST;
  std::string home;
  std::string project;
  Oza::Vestra::ProductType product = Oza::Vestra::KELVO;
  /// The command that the support library gives for the main design tool.
  std::string designTool = ":";
  /// The project identifier that the host supplies; nothing for none.
  std::optional<std::string> projectId;
  /// Whether script and rules file stay after the run.
  bool keepsReportFiles = false;
  /// An existing directory for the host's outcome and output.
  std::string records;
  /// Done while the host stands where its use of the library begins.
  std::function<void(pid_t)> atBeginning = [](pid_t) {};
};

/// How the host went.
struct HostEnd {
  /// The signal that ended it, SIGALRM when it hung.
  std::optional<int> signal;
  /// "answer true", "answer false", or "exception " and the type's name; empty when
  /// it did not come so far.
  std::string outcome;
  int descriptorsLost = 0;
  /// What it wrote on its standard output and error.
  std::string output;
  /// The calls of its use of the library up to the disturbance, that one included.
  /// Empty when nothing was to happen.
  std::vector<SystemCall> calls;
  /// Whether the host came to the call that was to be disturbed.
  bool disturbed = false;
};

/// Why no process can be watched here; nothing when one can.
std::optional<std::string> whyNothingIsTraced();

/// Runs the host program, calling nothing of the library in this process. The
/// support library is found as everywhere, by the loader's path.
HostEnd runHost(const HostStart& start, const Disturbance& disturbance = {});

}  // namespace vestra_test

#endif
