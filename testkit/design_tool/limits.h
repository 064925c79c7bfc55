#ifndef VESTRA_DESIGN_TOOL_LIMITS_H
#define VESTRA_DESIGN_TOOL_LIMITS_H

#include <string>

namespace vestra::design_tool {

/// Sets resource limits for this process: 60 s of processor time (RLIMIT_CPU), after which SIGXCPU ends it,
/// and 2 GiB of address space (RLIMIT_AS, not under a sanitizer), after which it prints `FILE: reason` and
/// exits with status 1. A lower limit that is already set stays.
///
/// @param file the script, for the message
void limitResources(const std::string& file);

}  // namespace vestra::design_tool

#endif
