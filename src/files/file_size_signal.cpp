#include "files/file_size_signal.h"

#include <ctime>

namespace Oza {
namespace {

sigset_t fileSizeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  return signals;
}

bool isWaiting() {
  sigset_t waiting;
  return sigpending(&waiting) == 0 && sigismember(&waiting, SIGXFSZ) == 1;
}

void takeAway() {
  const sigset_t signals = fileSizeSignal();
  const std::timespec atOnce{};
  sigtimedwait(&signals, nullptr, &atOnce);
}

}  // namespace

// A signal that the thread lets through does not wait.
FileSizeSignalHold::FileSizeSignalHold() {
  const sigset_t signals = fileSizeSignal();
  pthread_sigmask(SIG_BLOCK, &signals, &maskBefore);
  wasWaiting = sigismember(&maskBefore, SIGXFSZ) == 1 && isWaiting();
}

FileSizeSignalHold::~FileSizeSignalHold() {
  if (mayHaveCome && !wasWaiting) {
    takeAway();
  }
  pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

}  // namespace Oza
