#ifndef VESTRA_TESTS_HANDLER_RECORDING_INTERPRETER_H
#define VESTRA_TESTS_HANDLER_RECORDING_INTERPRETER_H

#include <string>
#include <vector>

namespace vestra_test {

/// One command as the interpreter calls it: its name and its arguments, unquoted.
using ScriptCommand = std::vector<std::string>;

/// Runs a report script in a real interpreter, a safe one, whose vestra_* commands
/// only write themselves down. The script's bytes reach it one to a character.
///
/// @throws std::runtime_error with the interpreter's message when the script fails.
std::vector<ScriptCommand> commandsOf(const std::string& script);

}  // namespace vestra_test

#endif
