#ifndef VESTRA_FILES_FILE_LOCK_H
#define VESTRA_FILES_FILE_LOCK_H

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

/// Whether a file's system has locks that answer at once. Those of network and cluster
/// file systems ask another machine, and those of file systems in user space another
/// process, either of which may never answer.
bool answersLocksAtOnce(int descriptor);

/// An advisory lock (flock) on an open file, kept for the object's life. The system
/// releases it when the process ends, in whatever way.
///
/// Without a lock everything goes on as it would with one: where the file system has
/// none that answer at once, and where another process holds it for longer than the
/// time budget lasts.
class FileLock {
 public:
  enum Kind { SHARED, EXCLUSIVE };

  /// @param timeBudget  What is left of it is used up as needed.
  FileLock(const Descriptor& lockedFile, Kind kind, TimeBudget& timeBudget);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  bool isHeld() const { return held; }

 private:
  const Descriptor& file;
  bool held;
};

}  // namespace Oza

#endif
