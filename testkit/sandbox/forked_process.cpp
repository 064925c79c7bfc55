#include "forked_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace vestra::testkit {
namespace {

constexpr std::chrono::milliseconds POLLING_INTERVAL{2};

void redirect(const char* path, int flags, int descriptor) {
  const int file = open(path, flags, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) {
    _exit(126);
  }
  close(file);
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

ProcessEnd ForkedProcess::wait(std::chrono::steady_clock::time_point deadline) {
  ProcessEnd end;
  int status = 0;
  while (waitpid(process, &status, WNOHANG) == 0) {
    if (!end.timedOut && std::chrono::steady_clock::now() >= deadline) {
      end.timedOut = true;
      kill(-process, SIGKILL);
    }
    std::this_thread::sleep_for(POLLING_INTERVAL);
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
