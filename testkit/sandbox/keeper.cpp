#include "sandbox/keeper.h"

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <set>
#include <vector>

#include "intercept/child_processes.h"
#include "intercept/fields.h"
#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

using Clock = std::chrono::steady_clock;

/// How long what the child has started may take to notice its end.
constexpr std::chrono::milliseconds GRACE{100};

/// Whatever another process waits for the end of, a pipe for example, must not stay open here.
void closeAllButStandardStreams() {
  constexpr unsigned int FIRST = STDERR_FILENO + 1;
  if (syscall(SYS_close_range, FIRST, ~0U, 0) == 0) {
    return;
  }
  const auto end = static_cast<int>(sysconf(_SC_OPEN_MAX));
  for (int descriptor = FIRST; descriptor < end; ++descriptor) {
    close(descriptor);
  }
}

/// The process between a child and who waits for it.
class Keeper {
 public:
  Keeper(pid_t theChild, const sigset_t& theSignals) : child(theChild), signals(theSignals) {}

  /// Until the child has ended or its time is up.
  void await(Clock::time_point deadline) {
    while (!hasEnded) {
      if (!awaitSignal(deadline)) {
        timedOut = true;
        kill(child, SIGKILL);
        deadline = Clock::time_point::max();
      }
      reap();
    }
  }

  void endOthers() {
    const auto deadline = Clock::now() + GRACE;
    while (!timedOut && reap() && awaitSignal(deadline)) {
    }
    while (reap()) {
      killAll();
    }
  }

  void write(const std::string& path) const {
    std::vector<std::string_view> fields(outliving.begin(), outliving.end());
    const std::string text = std::to_string(status);
    fields.insert(fields.begin(), {text, timedOut ? "timed out" : "ended"});
    writeBytes(path, intercept::joinedFields(fields));
  }

 private:
  /// A child's end. Whoever waits for this process ends it by SIGTERM, and so does the kernel at
  /// that one's death. @return Whether it came before the deadline.
  bool awaitSignal(Clock::time_point deadline) {
    using namespace std::chrono;
    const auto left = deadline == Clock::time_point::max() ? hours(1) : deadline - Clock::now();
    const auto whole = std::max(duration_cast<nanoseconds>(left), nanoseconds(0)).count();
    const timespec timeout{whole / 1000000000, whole % 1000000000};
    const int received = sigtimedwait(&signals, nullptr, &timeout);
    if (received == SIGTERM) {
      while (reap()) {
        killAll();
      }
      _exit(EXIT_FAILURE);
    }
    return received == SIGCHLD || Clock::now() < deadline;
  }

  /// @return Whether there are others still.
  bool reap() {
    int ended = 0;
    pid_t process = 0;
    while ((process = waitpid(-1, &ended, WNOHANG)) > 0) {
      if (process == child) {
        hasEnded = true;
        status = ended;
      }
    }
    return process == 0;
  }

  // What the ended have started becomes this process's children then: see the loops. What may not
  // be ended is left.
  void killAll() {
    bool isAnyEnded = false;
    for (const pid_t process : intercept::childProcesses()) {
      if (process != child && known.insert(process).second && !timedOut) {
        outliving.push_back(intercept::commandLineOf(process));
      }
      isAnyEnded = kill(process, SIGKILL) == 0 || isAnyEnded;
    }
    if (!isAnyEnded) {
      _exit(EXIT_FAILURE);
    }
    awaitSignal(Clock::now() + GRACE);
  }

  pid_t child;
  sigset_t signals;
  int status = 0;
  bool hasEnded = false;
  bool timedOut = false;
  std::set<pid_t> known;
  std::vector<std::string> outliving;
};

}  // namespace

void beKeeper(const std::string& endFile, Clock::time_point deadline) {
  sigset_t signals;
  sigset_t before;
  sigemptyset(&signals);
  sigaddset(&signals, SIGCHLD);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, &before);
  // Ignored, children would vanish unseen.
  std::signal(SIGCHLD, SIG_DFL);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return;
  }
  if (child < 0) {
    _exit(EXIT_FAILURE);
  }
  closeAllButStandardStreams();
  Keeper keeper(child, signals);
  keeper.await(deadline);
  keeper.endOthers();
  keeper.write(endFile);
  _exit(EXIT_SUCCESS);
}

}  // namespace vestra::testkit
