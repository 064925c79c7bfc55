#include "rehearse/program_run.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "intercept/child_processes.h"
#include "rehearse/rehearsal.h"

namespace vestra::inspect {
namespace {

using Clock = std::chrono::steady_clock;

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) {
    pointers.push_back(const_cast<char*>(text.c_str()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

sigset_t signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int each : {SIGCHLD, SIGTERM, SIGHUP}) {
    sigaddset(&set, each);
  }
  return set;
}

/// Waits for the end of all processes that a program has started.
class Waiting {
 public:
  Waiting(pid_t theProgram, const sigset_t& theSet) : program(theProgram), set(theSet) {}

  ProgramEnd wait(std::chrono::milliseconds limit) {
    while (reap() && !hasEnded) {
      const int received = sigwaitinfo(&set, nullptr);
      if (received == SIGTERM || received == SIGHUP) {
        kill(program, received);
      }
    }
    const auto deadline = Clock::now() + limit;
    while (reap() && awaitBefore(deadline)) {
    }
    for (const pid_t process : intercept::childProcesses()) {
      end.stillRunning.push_back(std::to_string(process) + " (" + intercept::commandLineOf(process) + ")");
    }
    return end;
  }

 private:
  /// @return Whether there are others still.
  bool reap() {
    int status = 0;
    pid_t process = 0;
    while ((process = waitpid(-1, &status, WNOHANG)) > 0) {
      if (process == program) {
        hasEnded = true;
        end.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
    }
    return process == 0;
  }

  /// Whether another process has ended, and no signal has asked this one to.
  bool awaitBefore(Clock::time_point deadline) const {
    using namespace std::chrono;
    const auto left = std::max(duration_cast<nanoseconds>(deadline - Clock::now()), nanoseconds(0)).count();
    const timespec timeout{left / 1000000000, left % 1000000000};
    const int received = sigtimedwait(&set, nullptr, &timeout);
    return received == SIGCHLD || (received < 0 && errno == EINTR);
  }

  pid_t program;
  sigset_t set;
  bool hasEnded = false;
  ProgramEnd end;
};

}  // namespace

ProgramEnd runProgram(const std::string& path, const std::vector<std::string>& words,
                      const std::vector<std::string>& environment, bool outputIsErrors,
                      std::chrono::milliseconds limit) {
  const sigset_t awaited = signals();
  sigset_t before;
  sigprocmask(SIG_BLOCK, &awaited, &before);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  const pid_t child = fork();
  if (child < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    sigprocmask(SIG_SETMASK, &before, nullptr);
    if (outputIsErrors) {
      dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    execve(path.c_str(), pointersTo(words).data(), pointersTo(environment).data());
    _exit(errno == ENOENT ? NOT_FOUND : MAY_NOT_BE_RUN);
  }
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGQUIT, SIG_IGN);
  return Waiting(child, awaited).wait(limit);
}

}  // namespace vestra::inspect
