#ifndef VESTRA_TESTKIT_RECORDER_COMMAND_LINE_H
#define VESTRA_TESTKIT_RECORDER_COMMAND_LINE_H

#include <climits>
#include <optional>
#include <string_view>

namespace vestra::testkit {

/// What a command line that starts the main design tool names. The texts are parts of it.
struct ToolCommandLine {
  /// The report script.
  std::string_view script;
  /// The file that the lab tool's output goes to; empty for the simulator's.
  std::string_view log;
};

/// Takes apart what the library gives to the shell.
///
/// @return Nothing when the command line is not the library's.
std::optional<ToolCommandLine> toolCommandLine(std::string_view commandLine);

/// A path, empty for none.
struct Path {
  char text[PATH_MAX] = "";
};

Path pathFrom(std::string_view text);

/// The rules file that lies beside a report script.
Path rulesFileBeside(std::string_view script);

}  // namespace vestra::testkit

#endif
