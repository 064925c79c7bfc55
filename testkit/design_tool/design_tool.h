#ifndef VESTRA_DESIGN_TOOL_DESIGN_TOOL_H
#define VESTRA_DESIGN_TOOL_DESIGN_TOOL_H

#include <iosfwd>

#include "design_tool/command_line.h"
#include "design_tool/script/script_evaluation.h"

namespace vestra::design_tool {

/// Runs the script and writes all that it asks for: the XML and HTML reports, and the copy in the outbox.
/// Either everything is written or nothing.
///
/// @param out      gets a few lines that say what was read and written
/// @param err      gets the warnings and, when the run fails, the error
/// @param observer see evaluateScript; may be null
/// @return         the exit status: 0, or 1 after an error
int runDesignTool(const RunRequest& request, std::ostream& out, std::ostream& err,
                  LineObserver observer = nullptr);

/// Prints what the script reports, as a text, and marks each item that the interpreter does not read as it
/// was written. Of a damaged script, the items before the damage and behind it are printed. Nothing is
/// written.
///
/// @param err      gets the error, where the script is damaged
/// @param observer see evaluateScript; may be null
/// @return         the exit status: 0, or 1 after an error
int showReport(const ShowRequest& request, std::ostream& out, std::ostream& err,
               LineObserver observer = nullptr);

}  // namespace vestra::design_tool

#endif
