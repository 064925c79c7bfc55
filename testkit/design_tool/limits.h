#ifndef VESTRA_DESIGN_TOOL_LIMITS_H
#define VESTRA_DESIGN_TOOL_LIMITS_H

#include <cstddef>
#include <string>

namespace vestra::design_tool {

/// Sets resource limits for this process: 60 s of processor time (RLIMIT_CPU) and 2 GiB of address space
/// (RLIMIT_AS, not under a sanitizer). A lower limit that is already set stays. Where a limit is reached, or
/// the interpreter crashes, `FILE:LINE: reason` is printed to standard error and the process exits with
/// status 1.
///
/// @param file the script, for the message
void limitResources(const std::string& file);

/// Stores the line of the command that runs next, for that message.
void noteLine(std::size_t line);

}  // namespace vestra::design_tool

#endif
