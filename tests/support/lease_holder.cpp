#include "support/lease_holder.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace vestra_test {
namespace {

[[noreturn]] void hold(const std::string& path, LeaseHolder::Conduct conduct, int ready) {
  sigset_t lost;
  sigemptyset(&lost);
  sigaddset(&lost, SIGIO);
  sigprocmask(SIG_BLOCK, &lost, nullptr);
  const int file = open(path.c_str(), O_RDWR);
  const bool held = fcntl(file, F_SETLEASE, F_WRLCK) == 0;
  static_cast<void>(write(ready, held ? "l" : "x", 1) == 1);
  if (conduct == LeaseHolder::YIELDS) {
    sigwaitinfo(&lost, nullptr);
    fcntl(file, F_SETLEASE, F_UNLCK);
  }
  for (;;) {
    pause();
  }
}

}  // namespace

LeaseHolder::LeaseHolder(const std::string& path, Conduct conduct) {
  std::array<int, 2> ready{};
  if (pipe(ready.data()) != 0 || (process = fork()) < 0) {
    throw std::runtime_error("no process can be started");
  }
  if (process == 0) {
    hold(path, conduct, ready[1]);
  }
  char word = ' ';
  close(ready[1]);
  const bool answered = read(ready[0], &word, 1) == 1;
  close(ready[0]);
  if (!answered || word != 'l') {
    kill(process, SIGKILL);
    throw std::runtime_error("no lease can be held here");
  }
}

LeaseHolder::~LeaseHolder() {
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
}

}  // namespace vestra_test
