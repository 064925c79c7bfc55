#include "support/file_holders.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace vestra_test {
namespace {

[[noreturn]] void stay() {
  for (;;) {
    pause();
  }
}

sigset_t leaseIsBroken() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGIO);
  return signals;
}

}  // namespace

FileHolder::FileHolder(const std::function<bool()>& take, const std::function<void()>& wait) {
  std::array<int, 2> ready{};
  if (pipe(ready.data()) != 0 || (process = fork()) < 0) {
    throw std::runtime_error("no process can be started");
  }
  if (process == 0) {
    setpgid(0, 0);
    static_cast<void>(write(ready[1], take() ? "h" : "x", 1) == 1);
    wait();
    stay();
  }
  char word = ' ';
  close(ready[1]);
  const bool isHeld = read(ready[0], &word, 1) == 1 && word == 'h';
  close(ready[0]);
  if (!isHeld) {
    kill(process, SIGKILL);
    throw std::runtime_error("the file cannot be held");
  }
}

FileHolder::~FileHolder() {
  kill(-process, SIGKILL);
  waitpid(process, nullptr, 0);
}

void FileHolder::stop() const {
  kill(process, SIGSTOP);
  waitpid(process, nullptr, WUNTRACED);
}

void FileHolder::killAlone() const {
  kill(process, SIGKILL);
  siginfo_t ended{};
  waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT);
}

LockHolder::LockHolder(const std::string& path, short type, bool forks)
    : FileHolder([=] {
        struct flock wholeFile {};
        wholeFile.l_type = type;
        wholeFile.l_whence = SEEK_SET;
        const bool isHeld = fcntl(open(path.c_str(), O_RDWR), F_SETLK, &wholeFile) == 0;
        if (forks && fork() == 0) {
          stay();
        }
        return isHeld;
      }) {}

LeaseHolder::LeaseHolder(const std::string& path, Conduct conduct)
    : FileHolder(
          [=] {
            const sigset_t broken = leaseIsBroken();
            sigprocmask(SIG_BLOCK, &broken, nullptr);
            return fcntl(open(path.c_str(), O_RDWR), F_SETLEASE, F_WRLCK) == 0;
          },
          [=] {
            const sigset_t broken = leaseIsBroken();
            if (conduct == YIELDS) {
              sigwaitinfo(&broken, nullptr);
              close_range(3, ~0U, 0);
            }
          }) {}

}  // namespace vestra_test
