#ifndef VESTRA_DESIGN_TOOL_HTML_PAGE_H
#define VESTRA_DESIGN_TOOL_HTML_PAGE_H

#include <string>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// The HTML report: the intro, what the page is, who reports and about which project, each identifier with
/// how long it lives and how to reset it; then a section for each rule in its style, then the data that no
/// rule maps. One file that loads nothing besides: no script, no outside resource, and a content policy that
/// would forbid both. Readable on a phone, on paper, in light and in dark. Every text is escaped.
///
/// @param privacyPage a file to link to; may be empty
std::string renderHtml(const Report& report, const std::vector<Rule>& rules,
                       const std::string& privacyPage = "");

}  // namespace vestra::design_tool

#endif
