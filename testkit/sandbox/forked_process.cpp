#include "sandbox/forked_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <thread>

namespace vestra::testkit {
namespace {

void redirect(const char* path, int flags, int descriptor) {
  const int file = open(path, flags, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) {
    _exit(126);
  }
  close(file);
}

/// Until then, in whole milliseconds as `poll` counts them.
int millisecondsUntil(std::chrono::steady_clock::time_point deadline) {
  using namespace std::chrono;
  const auto left = ceil<milliseconds>(deadline - steady_clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, std::numeric_limits<int>::max()));
}

bool isReadableBy(int descriptor, std::chrono::steady_clock::time_point deadline) {
  pollfd awaited{descriptor, POLLIN, 0};
  int found = 0;
  do {
    found = poll(&awaited, 1, millisecondsUntil(deadline));
  } while (found < 0 && errno == EINTR);
  return found > 0;
}

bool isSeenToEndBy(pid_t process, std::chrono::steady_clock::time_point deadline) {
  siginfo_t end{};
  while (waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         end.si_pid == 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return end.si_pid != 0;
}

void leadProcessGroup() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setpgid(0, 0);
}

}  // namespace

ForkedProcess::ForkedProcess(const std::string& printed, const std::function<void()>& body) {
  // What is still buffered must not be printed by both.
  std::fflush(nullptr);
  process = fork();
  if (process < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (process == 0) {
    leadProcessGroup();
    const int append = O_WRONLY | O_CREAT | O_APPEND;
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect((printed + ".out").c_str(), append, STDOUT_FILENO);
    redirect((printed + ".err").c_str(), append, STDERR_FILENO);
    body();
    std::exit(EXIT_SUCCESS);
  }
  setpgid(process, process);
}

ForkedProcess::~ForkedProcess() {
  kill(-process, SIGKILL);
  if (!reaped) {
    waitpid(process, nullptr, 0);
  }
}

// A descriptor of the process becomes readable at its end. Where there are none, as under
// Valgrind, it is looked at now and then.
bool ForkedProcess::hasEndedBy(std::chrono::steady_clock::time_point deadline) const {
  const auto end = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  if (end < 0) {
    return isSeenToEndBy(process, deadline);
  }
  const bool hasEnded = isReadableBy(end, deadline);
  close(end);
  return hasEnded;
}

ProcessEnd ForkedProcess::wait(std::chrono::steady_clock::time_point deadline) {
  ProcessEnd end;
  if (!hasEndedBy(deadline)) {
    end.timedOut = true;
    kill(-process, SIGKILL);
  }
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  reaped = true;
  if (WIFSIGNALED(status)) {
    end.signal = WTERMSIG(status);
  } else {
    end.exitStatus = WEXITSTATUS(status);
  }
  return end;
}

}  // namespace vestra::testkit
