#ifndef VESTRA_DESIGN_TOOL_REPORT_RECORD_H
#define VESTRA_DESIGN_TOOL_REPORT_RECORD_H

#include <string>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// `report.json`, the record that programs read a report from.
///
///     {
///       "client_id": "3600604488",
///       "registration_id": TEXT, "intro": TEXT, "vestra_dir": TEXT, "xml": TEXT, "html": TEXT, "wdm": TEXT,
///       "clients": [TEXT, ...],                      the registered clients, in order
///       "items": [{"client": TEXT, "key": TEXT, "value": TEXT, "context": TEXT,
///                  "line": 3,                        where the command that added it begins
///                  "section_rule": true}, ...],      whether a rule maps its context
///       "rules": [{"client": TEXT, "context": TEXT, "xml_map": TEXT, "html_map": TEXT,
///                  "html_format": "UserEnvStyle"}, ...],
///       "warnings": [TEXT, ...]                      as printed: "FILE:LINE: warning: what is suspicious"
///     }
///
/// A TEXT is exact: a JSON string where the bytes are UTF-8, and {"hex": "ff00"}, two lower-case digits a
/// byte, where they are not.
///
/// @param warnings the lines as printed
std::string renderRecord(const Report& report, const std::vector<Rule>& rules,
                         const std::vector<std::string>& warnings);

}  // namespace vestra::design_tool

#endif
