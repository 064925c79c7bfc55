#ifndef VESTRA_DESIGN_TOOL_SUSPICIONS_H
#define VESTRA_DESIGN_TOOL_SUSPICIONS_H

#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// All that is legal yet suspicious about a report, in the order of the script's lines: what was noticed
/// while the script ran, data of a client that was never registered, no client at all, data whose context has
/// no rule, the same key twice in a context, a key with white space, a client registered twice. What concerns
/// many items alike is said once, at the first.
std::vector<Warning> suspicionsAbout(const Report& report, const std::vector<Rule>& rules);

}  // namespace vestra::design_tool

#endif
