#ifndef VESTRA_INTERCEPT_CHILD_PROCESSES_H
#define VESTRA_INTERCEPT_CHILD_PROCESSES_H

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace vestra::intercept {

/// This process's children, as /proc lists them.
std::vector<pid_t> childProcesses();

/// Reaps the children that have ended. `status` gets the wait status of `process` if it is one of them.
/// @return Whether there are others still.
bool reapChildren(pid_t process, std::optional<int>& status);

/// Waits for one of the signals, which are blocked, until the deadline.
/// @return The signal; -1 at the deadline or, with errno EINTR, after another signal.
int awaitSignal(const sigset_t& signals, std::chrono::steady_clock::time_point deadline);

/// A process's words with blanks between them; its number where it has none.
std::string commandLineOf(pid_t process);

}  // namespace vestra::intercept

#endif
