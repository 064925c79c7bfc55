#ifndef VESTRA_DESIGN_TOOL_TEXT_REPORT_H
#define VESTRA_DESIGN_TOOL_TEXT_REPORT_H

#include <string>
#include <vector>

#include "design_tool/report/report.h"

namespace vestra::design_tool {

/// The report for a terminal: who, then each section with its items, keys and values in two columns.
///
/// @param marks     what is to be said of items, by their lines: each such item gets a `!` and the words
///                  below it
/// @param isCorrupt whether the script ended in an error, so that its number is not known
std::string renderText(const Report& report, const std::vector<Warning>& marks = {}, bool isCorrupt = false);

}  // namespace vestra::design_tool

#endif
