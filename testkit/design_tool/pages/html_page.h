#ifndef VESTRA_DESIGN_TOOL_HTML_PAGE_H
#define VESTRA_DESIGN_TOOL_HTML_PAGE_H

#include <string>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// The HTML report: the intro, who reports and about which project, then a section for each rule in its
/// style, then the data that no rule maps. One file that needs nothing besides: no script, no outside
/// resource, and a content policy that would forbid both. Readable on a phone, on paper, in light and in
/// dark. Every text is escaped.
std::string renderHtml(const Report& report, const std::vector<Rule>& rules);

}  // namespace vestra::design_tool

#endif
