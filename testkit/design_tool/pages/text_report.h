#ifndef VESTRA_DESIGN_TOOL_TEXT_REPORT_H
#define VESTRA_DESIGN_TOOL_TEXT_REPORT_H

#include <map>
#include <string>
#include <vector>

#include "reading/written_items.h"

namespace vestra::design_tool {

/// The items of a report for a terminal: each context with its items, keys and values in two columns.
///
/// @param hazards by their lines, why the interpreter does not read these items as they were written: each
///                gets a `!` and the words below it
std::string renderText(const std::vector<reading::WrittenItem>& items,
                       const std::map<std::size_t, std::string>& hazards = {});

}  // namespace vestra::design_tool

#endif
