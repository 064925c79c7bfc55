#ifndef VESTRA_HANDLER_COMMAND_LINE_H
#define VESTRA_HANDLER_COMMAND_LINE_H

#include <string>

namespace Oza {

/// The shell command that runs the main design tool on a script. Nothing in it is
/// quoted.
///
/// @param tool         The command that starts the tool.
/// @param script       Path of the script.
/// @param redirection  Appended at the end: empty, or the result of `redirectionTo`.
std::string commandLine(const std::string& tool, const std::string& script, const std::string& redirection);

/// The redirection of standard output and standard error into a log.
std::string redirectionTo(const std::string& log);

}  // namespace Oza

#endif
