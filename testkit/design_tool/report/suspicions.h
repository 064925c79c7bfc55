#ifndef VESTRA_DESIGN_TOOL_SUSPICIONS_H
#define VESTRA_DESIGN_TOOL_SUSPICIONS_H

#include <ctime>
#include <string_view>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// All that is legal yet suspicious about a report, in the order of the script's lines: a text that the
/// interpreter has changed, a value that ends its own command and adds items, a number that is not the
/// checksum of what was written, data of a client that was never registered, data whose context has no rule,
/// the same key twice in a context. What concerns many items alike is said once, at the first.
///
/// The library computes the checksum, a CRC-32, from the local hour in which it writes the script and from
/// all that it reports.
///
/// @param script  the script's bytes
/// @param written when the script was written; the checksum of any hour from a day before to a day after is
///                accepted, which allows for every time zone
std::vector<Warning> suspicionsAbout(const Report& report, const std::vector<Rule>& rules,
                                     std::string_view script, std::time_t written);

}  // namespace vestra::design_tool

#endif
