#include "support/lock_holder.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace vestra_test {
namespace {

[[noreturn]] void hold(const std::string& path, short type, bool forks, int ready) {
  setpgid(0, 0);
  struct flock wholeFile {};
  wholeFile.l_type = type;
  wholeFile.l_whence = SEEK_SET;
  const bool held = fcntl(open(path.c_str(), O_RDWR), F_SETLK, &wholeFile) == 0;
  if (!forks || fork() == 0) {
    static_cast<void>(write(ready, held ? "l" : "x", 1) == 1);
  }
  for (;;) {
    pause();
  }
}

}  // namespace

LockHolder::LockHolder(const std::string& path, short type, bool forks) {
  std::array<int, 2> ready{};
  if (pipe(ready.data()) != 0 || (process = fork()) < 0) {
    throw std::runtime_error("no process can be started");
  }
  if (process == 0) {
    hold(path, type, forks, ready[1]);
  }
  char word = ' ';
  close(ready[1]);
  const bool held = read(ready[0], &word, 1) == 1 && word == 'l';
  close(ready[0]);
  if (!held) {
    kill(process, SIGKILL);
    throw std::runtime_error("no lock can be held on " + path);
  }
}

LockHolder::~LockHolder() {
  kill(-process, SIGKILL);
  waitpid(process, nullptr, 0);
}

void LockHolder::stop() const {
  kill(process, SIGSTOP);
  waitpid(process, nullptr, WUNTRACED);
}

void LockHolder::killAlone() const {
  kill(process, SIGKILL);
  siginfo_t ended{};
  waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT);
}

}  // namespace vestra_test
