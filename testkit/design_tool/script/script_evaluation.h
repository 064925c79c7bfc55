#ifndef VESTRA_DESIGN_TOOL_SCRIPT_EVALUATION_H
#define VESTRA_DESIGN_TOOL_SCRIPT_EVALUATION_H

#include <optional>
#include <string>
#include <string_view>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/report/report.h"
#include "design_tool/script/script_limits.h"

namespace vestra::design_tool {

/// Called with the number of each line on which a command is about to run, and with 0 when none will run any
/// more, for a process that outlives the interpreter.
using LineObserver = void (*)(std::size_t line);

/// Runs a report script and gives back what it said.
///
/// @param file     the script's name, for messages
/// @param bytes    its content, read as bytes: the report gets them unchanged, NUL included
/// @param limits   end a script that goes on for ever
/// @param observer may be null
/// @throws DiagnosedError for all that the interpreter or the protocol refuses. The first error ends the
///                        run; an error against the protocol cannot be caught by the script.
Report evaluateScript(const std::string& file, std::string_view bytes, const Limits& limits = {},
                      LineObserver observer = nullptr);

/// A report up to the error that ended the script, if there was one.
struct PartialReport {
  Report report;
  std::optional<Diagnostic> error;
};

/// As evaluateScript, for a reader who wants to see the rest of a damaged script.
PartialReport evaluateAsFarAsPossible(const std::string& file, std::string_view bytes,
                                      const Limits& limits = {}, LineObserver observer = nullptr);

}  // namespace vestra::design_tool

#endif
