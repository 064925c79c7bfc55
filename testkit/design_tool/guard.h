#ifndef VESTRA_DESIGN_TOOL_GUARD_H
#define VESTRA_DESIGN_TOOL_GUARD_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace vestra::design_tool {

/// What a script may use. The interpreter's own limits are smaller, but it looks at them between its commands
/// only; these hold inside a command too.
struct Allowance {
  /// For each line's command. Time of the processor, so that a busy machine does not count.
  std::chrono::milliseconds processorTime{25'000};
  /// Bytes of address space while the script runs. Not held to under a sanitizer.
  std::size_t memory = std::size_t{2} << 30;
  /// For the whole run, by the clock on the wall: ends what sleeps.
  std::chrono::milliseconds wait{3'600'000};
};

/// Runs `work` in a process of its own, within limits, and passes its exit status on. Where the process does
/// not survive its script, one sentence says why and names the line of `file`, and the status is 1.
///
/// @param work is given to the new process, which ends with its result; noteLine may be called in it
/// @param err  gets the sentence
int runGuarded(const std::string& file, const std::function<int()>& work, std::ostream& err,
               const Allowance& allowance = {});

/// Remembers, for the guard, the line of the script that is running, and gives its command the allowance; 0
/// once the script is over. Does nothing outside of runGuarded.
void noteLine(std::size_t line);

}  // namespace vestra::design_tool

#endif
