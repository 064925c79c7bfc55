#ifndef VESTRA_DESIGN_TOOL_DESIGN_TOOL_H
#define VESTRA_DESIGN_TOOL_DESIGN_TOOL_H

#include <iosfwd>
#include <string>

namespace vestra::design_tool {

/// Runs the script and writes what it asks for: the XML and HTML reports, and then the copy in the outbox.
/// Each file is replaced atomically. Errors of the script, its rules and its paths are found before anything
/// is written.
///
/// @param outbox      empty when no copy is to be kept
/// @param privacyPage where the page about privacy is installed; empty where it is not
/// @param out         gets a few lines that say what was read and written
/// @param err         gets the warnings and, when the run fails, the error
/// @return            the exit status: 0, or 1 after an error
int runDesignTool(const std::string& source, const std::string& outbox, const std::string& privacyPage,
                  std::ostream& out, std::ostream& err);

/// Prints what the script reports, as a text, and marks each item that the interpreter does not read as it
/// was written. Of a corrupt script, the items are printed as they were written. Nothing is written to disk.
///
/// @param err gets the error, where the script is corrupt
/// @return    the exit status: 0, or 1 after an error
int showReport(const std::string& source, std::ostream& out, std::ostream& err);

/// Prints the `report.json` that a run would put into the outbox. Nothing is written.
///
/// @return the exit status: 0, or 1 after an error
int printRecord(const std::string& source, std::ostream& out, std::ostream& err);

}  // namespace vestra::design_tool

#endif
