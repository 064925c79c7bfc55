#ifndef VESTRA_INTERCEPT_CHILD_PROCESSES_H
#define VESTRA_INTERCEPT_CHILD_PROCESSES_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace vestra::intercept {

/// This process's children, as /proc lists them.
std::vector<pid_t> childProcesses();

/// A process's words with blanks between them; its number where it has none.
std::string commandLineOf(pid_t process);

}  // namespace vestra::intercept

#endif
