#ifndef VESTRA_DESIGN_TOOL_SCRIPT_EVALUATION_H
#define VESTRA_DESIGN_TOOL_SCRIPT_EVALUATION_H

#include <string>
#include <string_view>

#include "report.h"
#include "script_limits.h"

namespace vestra::design_tool {

/// Called with the number of each line on which a command is about to run, for whoever outlives the
/// interpreter.
using LineObserver = void (*)(std::size_t line);

/// Runs a report script and gives back what it said.
///
/// \param file     the script's name, for messages
/// \param bytes    its content, read as bytes: what the script says reaches the report unchanged, NUL
/// included \param observer may be null \throws DiagnosedError for whatever the interpreter or the protocol
/// refuses, and for a script that goes on for ever.
///         The first error ends the run; one against the protocol can't be caught by the script itself.
Report evaluateScript(const std::string& file, std::string_view bytes, const Limits& limits = {},
                      LineObserver observer = nullptr);

}  // namespace vestra::design_tool

#endif
