#ifndef VESTRA_TESTS_DESIGN_TOOL_PROCESS_H
#define VESTRA_TESTS_DESIGN_TOOL_PROCESS_H

#include <string>
#include <vector>

namespace vestra::design_tool {

/// What a program left when it ended.
struct Outcome {
  /// The exit status; 128 and the signal's number when a signal ended it, as shells have it.
  int status = 0;
  std::string out;
  std::string err;
};

/// Runs a program and waits for it.
///
/// \param words       the program, looked up in PATH, and its arguments
/// \param environment additional `NAME=value` entries
/// \param directory   where it runs; empty for here
Outcome run(const std::vector<std::string>& words, const std::vector<std::string>& environment = {},
            const std::string& directory = "");

/// Whether PATH knows the program.
bool isInstalled(const std::string& program);

}  // namespace vestra::design_tool

#endif
