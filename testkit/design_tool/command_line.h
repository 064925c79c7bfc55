#ifndef VESTRA_DESIGN_TOOL_COMMAND_LINE_H
#define VESTRA_DESIGN_TOOL_COMMAND_LINE_H

#include <string>
#include <variant>
#include <vector>

namespace vestra::design_tool {

/// A run as it was asked for.
struct RunRequest {
  std::string source;
  /// Empty when no copy is to be kept.
  std::string outbox;
  /// Where the page about privacy is installed; empty where it is not.
  std::string privacyPage = {};
};
/// A script to be shown as a text, without its rules and without any report being written.
struct ShowRequest {
  std::string script;
};
struct HelpRequest {};
struct VersionRequest {};
/// A command line that asks for nothing the tool can do; the message says why.
struct UsageError {
  std::string message;
};

using Request = std::variant<RunRequest, ShowRequest, HelpRequest, VersionRequest, UsageError>;

/// Reads `-mode batch -source FILE [-notrace] [--outbox DIR]`, in any order, or `--show SCRIPT`, or `--help`,
/// or `--version`.
///
/// @param arguments     without the program's own name
/// @param defaultOutbox the outbox where the command line names none; may be null or empty
Request readCommandLine(const std::vector<std::string>& arguments, const char* defaultOutbox);

/// What `--help` prints.
std::string helpText();

/// What `--version` prints.
std::string versionText();

/// What is printed when the command line is wrong.
std::string usageText(const UsageError& error);

}  // namespace vestra::design_tool

#endif
