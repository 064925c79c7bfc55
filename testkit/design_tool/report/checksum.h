#ifndef VESTRA_DESIGN_TOOL_REPORT_CHECKSUM_H
#define VESTRA_DESIGN_TOOL_REPORT_CHECKSUM_H

#include <ctime>
#include <string_view>
#include <vector>

#include "design_tool/report/report.h"
#include "reading/written_items.h"

namespace vestra::design_tool {

/// What the number in -clientid tells of a report. The number is the CRC-32 of the hour in which the script
/// was written and of all that it reports, so a text that was changed since, or that a value has added, does
/// not agree with it.
///
/// - The number agrees for an hour around the script's own, or for an earlier one since 1970: no warning,
/// since
///   scripts are kept.
/// - It agrees when a value is taken together with the items behind it: the value has added these items.
/// - Otherwise the number for the script's own hour is named.
///
/// @param script  the script's bytes
/// @param written when the script was written: its hour is the local one
std::vector<Warning> checksumWarnings(const Report& report, std::string_view script, std::time_t written);

/// Values that end their own command and begin others on the same line, by the interpreter's reading.
std::vector<Warning> injectedItems(const Report& report, const std::vector<reading::WrittenItem>& written);

}  // namespace vestra::design_tool

#endif
