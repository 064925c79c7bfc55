#ifndef VESTRA_TESTS_DESIGN_TOOL_GOLDEN_H
#define VESTRA_TESTS_DESIGN_TOOL_GOLDEN_H

#include <string>

namespace vestra::design_tool {

/// A file of the golden directory: what the library writes for a report, and what the tool makes of it. The
/// page's style sheet is put in place of `@PAGE_STYLE@`.
std::string golden(const std::string& name);

/// The same with another project directory in place of `/home/u/demo`.
std::string goldenIn(const std::string& directory, const std::string& name);

/// Writes a script as if it had been written in the hour that the golden scripts name.
void writeScript(const std::string& path, const std::string& script);

}  // namespace vestra::design_tool

#endif
