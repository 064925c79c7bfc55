#include "rehearse/program_run.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <optional>
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
    while (reap() && !status) {
      const int received = sigwaitinfo(&set, nullptr);
      if (received == SIGTERM || received == SIGHUP) {
        kill(program, received);
      }
    }
    const auto deadline = Clock::now() + limit;
    while (reap() && awaitBefore(deadline)) {
    }
    if (status) {
      end.status = WIFEXITED(*status) ? WEXITSTATUS(*status) : 128 + WTERMSIG(*status);
    }
    for (const pid_t process : intercept::childProcesses()) {
      end.stillRunning.push_back(std::to_string(process) + " (" + intercept::commandLineOf(process) + ")");
    }
    return end;
  }

 private:
  bool reap() { return intercept::reapChildren(program, status); }

  /// Whether another process has ended, and no signal has asked this one to.
  bool awaitBefore(Clock::time_point deadline) const {
    const int received = intercept::awaitSignal(set, deadline);
    return received == SIGCHLD || (received < 0 && errno == EINTR);
  }

  pid_t program;
  sigset_t set;
  std::optional<int> status;
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
