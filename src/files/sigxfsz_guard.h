#ifndef VESTRA_FILES_SIGXFSZ_GUARD_H
#define VESTRA_FILES_SIGXFSZ_GUARD_H

#include <csignal>

namespace Oza {

/// Blocks SIGXFSZ in the calling thread: a write beyond the process's file-size limit
/// (RLIMIT_FSIZE) then fails with EFBIG, while the signal would end a host that has no
/// handler for it.
///
/// The destructor discards a signal that such a write has left pending, and restores the
/// thread's mask. A signal that was pending before stays, and so does the host's handler.
class SigxfszGuard {
 public:
  SigxfszGuard();
  SigxfszGuard(const SigxfszGuard&) = delete;
  SigxfszGuard& operator=(const SigxfszGuard&) = delete;
  ~SigxfszGuard();

  /// To be called when every write has succeeded: the signal cannot be pending then.
  void endWithoutSignal() { mayBePending = false; }

 private:
  sigset_t maskBefore;
  bool mayBePending = true;
  bool wasPending;
};

}  // namespace Oza

#endif
