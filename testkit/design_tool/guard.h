#ifndef VESTRA_DESIGN_TOOL_GUARD_H
#define VESTRA_DESIGN_TOOL_GUARD_H

#include <cstddef>
#include <functional>
#include <string>

namespace vestra::design_tool {

/// Runs `work` in a process of its own, with limits on its memory and processor time, and passes its exit
/// status on. A script can exhaust the interpreter's stack or memory in ways that the interpreter itself
/// does not survive; one line on standard error then names the line of `file`, and the status is 1.
///
/// @param work is given to the new process, which ends with its result; noteLine may be called in it
int runGuarded(const std::string& file, const std::function<int()>& work);

/// Remembers, for the guard, the line of the script that is running. Does nothing outside of runGuarded.
void noteLine(std::size_t line);

}  // namespace vestra::design_tool

#endif
