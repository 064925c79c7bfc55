#include "sandbox/forked_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "sandbox/keeper.h"

namespace vestra::testkit {
namespace {

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
