#include "files/sigxfsz_guard.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "support/test.h"

namespace Oza {
namespace {

bool isBlocked() {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, SIGXFSZ) == 1;
}

bool isPending() {
  sigset_t pending;
  sigpending(&pending);
  return sigismember(&pending, SIGXFSZ) == 1;
}

void block() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

std::string state() {
  return std::string(isBlocked() ? "blocked" : "unblocked") + (isPending() ? ", pending" : "");
}

/// In a process of its own, since the signal ends it.
class Sigxfsz : public Test {
 protected:
  std::string writeBeyondTheLimit() const {
    const int file = open((directory / "file").c_str(), O_WRONLY | O_CREAT, 0600);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{3, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string first = write(file, "abcdef", 6) == 3 ? "three bytes, then " : "";
    const std::string second = write(file, "def", 3) == -1 ? strerrorname_np(errno) : "more";
    setrlimit(RLIMIT_FSIZE, &before);
    close(file);
    return first + second;
  }

  std::string writeUnderAGuard() const {
    const SigxfszGuard guard;
    return writeBeyondTheLimit();
  }

  TemporaryDirectory directory;
};

TEST_F(Sigxfsz, EndsTheProcessWithoutAGuard) {
  EXPECT_THROW(inChildProcess([&] { return writeBeyondTheLimit(); }), std::runtime_error);
}

TEST_F(Sigxfsz, OnlyFailsTheWriteUnderAGuard) {
  EXPECT_EQ(inChildProcess([&] { return writeUnderAGuard(); }), "three bytes, then EFBIG");
}

TEST_F(Sigxfsz, IsBlockedAndPendingAfterAGuardAsItWasBefore) {
  const struct {
    const char* state;
    std::function<void()> prepare;
  } rows[] = {
      {"unblocked", [] {}},
      {"blocked", block},
      {"blocked, pending",
       [] {
         block();
         raise(SIGXFSZ);
       }},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(inChildProcess([&] {
                row.prepare();
                writeUnderAGuard();
                return state();
              }),
              row.state);
  }
}

TEST_F(Sigxfsz, ReachesTheHostsHandlerAfterAGuardOnly) {
  EXPECT_EQ(inChildProcess([&] {
              static volatile std::sig_atomic_t calls = 0;
              struct sigaction action {};
              action.sa_handler = [](int) { calls = calls + 1; };
              sigaction(SIGXFSZ, &action, nullptr);
              writeUnderAGuard();
              const std::string during = std::to_string(calls);
              raise(SIGXFSZ);
              return during + " then " + std::to_string(calls);
            }),
            "0 then 1");
}

}  // namespace
}  // namespace Oza
