#include "sandbox/forked_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <system_error>
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
    while (!status) {
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
    killOthers();
  }

  void write(const std::string& path) const {
    std::vector<std::string_view> fields(outliving.begin(), outliving.end());
    const std::string text = std::to_string(*status);
    fields.insert(fields.begin(), {text, timedOut ? "timed out" : "ended"});
    writeBytes(path, intercept::joinedFields(fields));
  }

 private:
  /// A child's end. Whoever waits for this process ends it by SIGTERM, and so does the kernel at
  /// that one's death. @return Whether it came before the deadline.
  bool awaitSignal(Clock::time_point deadline) {
    const int received =
        intercept::awaitSignal(signals, std::min(deadline, Clock::now() + std::chrono::hours(1)));
    if (received == SIGTERM) {
      killOthers();
      _exit(EXIT_FAILURE);
    }
    return received == SIGCHLD || Clock::now() < deadline;
  }

  bool reap() { return intercept::reapChildren(child, status); }

  // What the killed have started becomes this process's children, hence the loop. What may not be
  // killed is left.
  void killOthers() {
    std::set<pid_t> known;
    for (bool isAnyKilled = true; isAnyKilled && reap(); awaitSignal(Clock::now() + GRACE)) {
      isAnyKilled = false;
      for (const pid_t process : intercept::childProcesses()) {
        if (process != child && known.insert(process).second && !timedOut) {
          outliving.push_back(intercept::commandLineOf(process));
        }
        isAnyKilled = kill(process, SIGKILL) == 0 || isAnyKilled;
      }
    }
  }

  pid_t child;
  sigset_t signals;
  std::optional<int> status;
  bool timedOut = false;
  std::vector<std::string> outliving;
};

/// Forks: returns in the child only. This process then waits for the child's end, ends what the
/// child has started and left running, writes how all that went, and exits.
///
/// @param endFile   Gets the fields status, "timed out" or "ended", and the command line of each
///                  process that outlived the child.
/// @param deadline  When the child is ended.
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

void redirect(const std::string& path, int flags, int descriptor) {
  const int file = open(path.c_str(), flags, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) {
    _exit(126);
  }
  close(file);
}

void redirectTo(const std::string& printed) {
  const int append = O_WRONLY | O_CREAT | O_APPEND;
  redirect("/dev/null", O_RDONLY, STDIN_FILENO);
  redirect(printed + ".out", append, STDOUT_FILENO);
  redirect(printed + ".err", append, STDERR_FILENO);
}

void waitFor(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

ForkedProcess::ForkedProcess(const std::string& printed, std::chrono::milliseconds limit,
                             const std::function<void()>& body)
    : endFile(printed + ".end") {
  // What is still buffered must not be printed by both.
  std::fflush(nullptr);
  keeper = fork();
  if (keeper < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (keeper == 0) {
    beKeeper(endFile, std::chrono::steady_clock::now() + limit);
    redirectTo(printed);
    body();
    std::exit(EXIT_SUCCESS);
  }
}

ForkedProcess::~ForkedProcess() {
  if (!reaped) {
    kill(keeper, SIGTERM);
    waitFor(keeper);
  }
}

ProcessEnd ForkedProcess::wait() {
  waitFor(keeper);
  reaped = true;
  const auto fields = intercept::fieldsIn(bytesOf(endFile).value_or(""));
  ProcessEnd end;
  if (fields.size() < 2) {
    end.signal = SIGKILL;
    return end;
  }
  const int status = std::stoi(fields[0]);
  if (WIFSIGNALED(status)) {
    end.signal = WTERMSIG(status);
  } else {
    end.exitStatus = WEXITSTATUS(status);
  }
  end.timedOut = fields[1] == "timed out";
  end.outliving.assign(fields.begin() + 2, fields.end());
  return end;
}

}  // namespace vestra::testkit
