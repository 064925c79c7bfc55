#ifndef VESTRA_TESTKIT_RECORDER_COMMAND_LINE_H
#define VESTRA_TESTKIT_RECORDER_COMMAND_LINE_H

#include <optional>
#include <string>

namespace vestra::testkit {

/// What a command line that starts the main design tool names.
struct ToolCommandLine {
  /// The report script.
  std::string script;
  /// The file that the lab tool's output goes to; empty for the simulator's.
  std::string log;
};

/// Takes apart what the library gives to the shell.
///
/// @return Nothing when the command line is not the library's.
std::optional<ToolCommandLine> toolCommandLine(const std::string& commandLine);

/// The rules file that lies beside a report script.
std::string rulesFileBeside(const std::string& script);

}  // namespace vestra::testkit

#endif
