#include "files/sigxfsz_guard.h"

#include <ctime>

namespace Oza {
namespace {

sigset_t sigxfsz() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  return signals;
}

bool isPending() {
  sigset_t pending;
  return sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1;
}

void discard() {
  const sigset_t signals = sigxfsz();
  const std::timespec atOnce{};
  sigtimedwait(&signals, nullptr, &atOnce);
}

}  // namespace

// Only a blocked signal can be pending.
SigxfszGuard::SigxfszGuard() {
  const sigset_t signals = sigxfsz();
  pthread_sigmask(SIG_BLOCK, &signals, &maskBefore);
  wasPending = sigismember(&maskBefore, SIGXFSZ) == 1 && isPending();
}

SigxfszGuard::~SigxfszGuard() {
  if (mayBePending && !wasPending) {
    discard();
  }
  pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

}  // namespace Oza
