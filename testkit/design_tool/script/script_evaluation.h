#ifndef VESTRA_DESIGN_TOOL_SCRIPT_SCRIPT_EVALUATION_H
#define VESTRA_DESIGN_TOOL_SCRIPT_SCRIPT_EVALUATION_H

#include <string>
#include <string_view>

#include "design_tool/report/report.h"

namespace vestra::design_tool {

/// More than a report of a million items needs.
constexpr int MOST_COMMANDS = 20'000'000;
/// More than the processor time that the design tool's process may take.
constexpr int MOST_SECONDS = 600;

/// Runs a report script in a safe interpreter: it can compute, and reaches no file, process, network or
/// event.
///
/// @param file         the script's name, for messages
/// @param bytes        its content, read as bytes: the report gets them unchanged, NUL included
/// @param mostCommands stops an endless loop: no more than this are run, those inside of loops included
/// @param mostSeconds  stops an empty loop, which runs no commands: by the clock
/// @throws DiagnosedError for all that the interpreter or the protocol refuses. The first error ends the
///                        run; the script cannot catch an error against the protocol.
Report evaluateScript(const std::string& file, std::string_view bytes, int mostCommands = MOST_COMMANDS,
                      int mostSeconds = MOST_SECONDS);

}  // namespace vestra::design_tool

#endif
