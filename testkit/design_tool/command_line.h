#ifndef VESTRA_DESIGN_TOOL_COMMAND_LINE_H
#define VESTRA_DESIGN_TOOL_COMMAND_LINE_H

#include <stdexcept>
#include <string>
#include <vector>

namespace vestra::design_tool {

enum class Action { Run, Show, PrintRecord, Help, Version };

/// What the command line asks for.
struct Request {
  Action action;
  std::string script = {};
};

/// An invalid command line; `what` says why.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Reads `-mode batch -source FILE [-notrace]`, in any order, or `--show FILE`, `--json FILE`, `--help` or
/// `--version`.
///
/// @param arguments without the program's own name
/// @throws UsageError
Request readCommandLine(const std::vector<std::string>& arguments);

/// What `--help` prints.
std::string helpText();

/// What `--version` prints.
std::string versionText();

/// What is printed when the command line is invalid.
std::string usageText(const UsageError& error);

}  // namespace vestra::design_tool

#endif
