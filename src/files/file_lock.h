#ifndef VESTRA_FILES_FILE_LOCK_H
#define VESTRA_FILES_FILE_LOCK_H

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

enum class LockKind { SHARED, EXCLUSIVE };

/// Takes an advisory record lock (fcntl) on a whole regular file, for this process. It ends
/// when the process closes any descriptor of the file, or ends in whatever way: unlike one
/// of flock, it is not inherited by a child that was forked meanwhile.
///
/// @param kind  EXCLUSIVE needs a file that is open for writing, SHARED one for reading.
/// @return False where the file system has no locks that answer at once, and when another
///         process holds one for longer than the time budget lasts.
bool lockFile(const Descriptor& file, LockKind kind, TimeBudget& timeBudget);

/// Ends the lock of a file that stays open.
void unlockFile(const Descriptor& file);

}  // namespace Oza

#endif
