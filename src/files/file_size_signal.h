#ifndef VESTRA_FILES_FILE_SIZE_SIGNAL_H
#define VESTRA_FILES_FILE_SIZE_SIGNAL_H

#include <csignal>

namespace Oza {

/// While it lives, a write beyond the process's limit of file sizes (RLIMIT_FSIZE)
/// only fails, as on a full disk. Otherwise it would raise SIGXFSZ, which ends a host
/// that has no handler for it.
///
/// Holds the signal back in the calling thread, whose mask it puts back at the end,
/// and takes away the one that came meanwhile. What the process does about the signal
/// stays the host's, and so does one that was waiting already. To be declared before
/// the stream, whose closing writes too.
class FileSizeSignalHold {
 public:
  FileSizeSignalHold();
  FileSizeSignalHold(const FileSizeSignalHold&) = delete;
  FileSizeSignalHold& operator=(const FileSizeSignalHold&) = delete;
  ~FileSizeSignalHold();

  /// Says that every write has succeeded: no signal needs to be taken away.
  void endWithoutSignal() { mayHaveCome = false; }

 private:
  sigset_t maskBefore;
  bool mayHaveCome = true;
  bool wasWaiting;
};

}  // namespace Oza

#endif
