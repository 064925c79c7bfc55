#ifndef VESTRA_FILES_FILE_LOCK_H
#define VESTRA_FILES_FILE_LOCK_H

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

enum class LockKind { SHARED, EXCLUSIVE };

/// Takes an advisory record lock (F_SETLK) on a whole regular file. The kernel releases it
/// when the process closes any descriptor of the file or ends. A forked child does not
/// inherit it, unlike one of flock(2).
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
///
/// @param kind  EXCLUSIVE needs a file that is open for writing, SHARED one for reading.
/// @return False on file systems where F_SETLK may block, and when another process holds a
///         lock for longer than the time budget lasts.
bool lockFile(const Descriptor& file, LockKind kind, TimeBudget& timeBudget);

/// Releases the lock of a file that stays open.
void unlockFile(const Descriptor& file);

}  // namespace Oza

#endif
