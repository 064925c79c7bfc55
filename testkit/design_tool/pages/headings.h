#ifndef VESTRA_DESIGN_TOOL_PAGES_HEADINGS_H
#define VESTRA_DESIGN_TOOL_PAGES_HEADINGS_H

#include <string>
#include <vector>

#include "design_tool/report/sections.h"

namespace vestra::design_tool {

/// A heading for each section, no two alike: the last part of the section's path as words, so that
/// "kelvo\command_line_options" is read as "Command line options". Where several sections would be headed so,
/// the whole path; where that is the same as well, the client and the context with it.
std::vector<std::string> headingsOf(const std::vector<MappedSection>& sections);

}  // namespace vestra::design_tool

#endif
