#ifndef VESTRA_DESIGN_TOOL_TEXT_REPORT_H
#define VESTRA_DESIGN_TOOL_TEXT_REPORT_H

#include <string>

#include "design_tool/report/report.h"

namespace vestra::design_tool {

/// The report for a terminal: who, then each section with its items, keys and values in two columns.
std::string renderText(const Report& report);

}  // namespace vestra::design_tool

#endif
