#ifndef VESTRA_DESIGN_TOOL_SCRIPT_LIMITS_H
#define VESTRA_DESIGN_TOOL_SCRIPT_LIMITS_H

#include <chrono>
#include <climits>
#include <cstddef>

namespace vestra::design_tool {

/// How long a script may be and go on. A report of a million items needs a million commands, each of them
/// short.
struct Limits {
  /// In the whole script, those inside of loops and procedures included.
  int commands = 20'000'000;
  /// For each command of the script itself, so that a large report is not stopped. Time of the processor, so
  /// that a busy machine does not count.
  std::chrono::milliseconds processorTime{20'000};
  /// The interpreter counts a text's bytes in an int, the byte that ends it included.
  std::size_t bytes = INT_MAX - 1;
};

}  // namespace vestra::design_tool

#endif
