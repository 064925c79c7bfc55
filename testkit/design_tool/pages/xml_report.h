#ifndef VESTRA_DESIGN_TOOL_XML_REPORT_H
#define VESTRA_DESIGN_TOOL_XML_REPORT_H

#include <string>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// The XML report.
///
///     <usage_statistics client_id="N" registration_id="ID" vestra_dir="DIR">
///       <intro>TEXT</intro>
///       <client name="NAME" />                                 each registered client, in order
///       <section client="NAME" context="CONTEXT" name="XML_MAP">   each rule, in order
///         <item key="KEY">VALUE</item>
///       </section>
///       <section client="NAME" context="CONTEXT">              data that no rule maps has no name
///     </usage_statistics>
///
/// Well-formed whatever the texts hold. A text with bytes that XML cannot hold (most control characters,
/// anything that is no UTF-8) is written with each such byte as `\xNN` and each backslash doubled, and an
/// attribute `escaped` on the element names what is written so: its attributes by name, its content as
/// `text`.
std::string renderXml(const Report& report, const std::vector<Rule>& rules);

}  // namespace vestra::design_tool

#endif
