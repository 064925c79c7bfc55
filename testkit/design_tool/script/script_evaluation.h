#ifndef VESTRA_DESIGN_TOOL_SCRIPT_SCRIPT_EVALUATION_H
#define VESTRA_DESIGN_TOOL_SCRIPT_SCRIPT_EVALUATION_H

#include <optional>
#include <string>
#include <string_view>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/report/report.h"

namespace vestra::design_tool {

/// More than a report of a million items needs.
constexpr int MOST_COMMANDS = 20'000'000;

/// Runs a report script.
///
/// @param file         the script's name, for messages
/// @param bytes        its content, read as bytes: the report gets them unchanged, NUL included
/// @param mostCommands stops an endless loop
/// @throws DiagnosedError for all that the interpreter or the protocol refuses. The first error ends the
///                        run; the script cannot catch an error against the protocol.
Report evaluateScript(const std::string& file, std::string_view bytes, int mostCommands = MOST_COMMANDS);

/// A report up to the error that ended the script, if there was one.
struct PartialReport {
  Report report;
  std::optional<Diagnostic> error;
};

/// As evaluateScript, for a reader who wants to see the rest of a corrupt script.
PartialReport evaluateAsFarAsPossible(const std::string& file, std::string_view bytes,
                                      int mostCommands = MOST_COMMANDS);

}  // namespace vestra::design_tool

#endif
