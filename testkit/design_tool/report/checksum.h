#ifndef VESTRA_DESIGN_TOOL_REPORT_CHECKSUM_H
#define VESTRA_DESIGN_TOOL_REPORT_CHECKSUM_H

#include <ctime>
#include <string_view>
#include <vector>

#include "design_tool/report/report.h"
#include "reading/written_items.h"

namespace vestra::design_tool {

/// Compares -clientid with the checksum of the report. The library computes it, a CRC-32, from the local hour
/// in which it writes the script and from all that it reports. A text that was changed since, or that a value
/// has added, does not agree with it.
///
/// @param script  the script's bytes
/// @param written when the script was written; any hour from a day before to a day after agrees, which allows
/// for
///                every time zone
/// @return        at most one warning, which names the number for the hour of `written`
std::vector<Warning> checksumWarnings(const Report& report, std::string_view script, std::time_t written);

/// Values that end their own command and begin others on the same line, as the interpreter reads them.
std::vector<Warning> injectedItems(const Report& report, const std::vector<reading::WrittenItem>& written);

}  // namespace vestra::design_tool

#endif
