#ifndef VESTRA_DESIGN_TOOL_RULES_H
#define VESTRA_DESIGN_TOOL_RULES_H

#include <string>
#include <vector>

namespace vestra::design_tool {

/// How a context's section looks on the HTML page.
enum class HtmlStyle {
  /// "UserEnvStyle": facts, each a name and what it is.
  UserEnvironment,
  /// "FennoxStatsStyle": a table of figures.
  Statistics,
};

/// Where one context of one client goes in the reports.
struct Rule {
  std::string client;
  std::string context;
  std::string xmlMap;
  std::string htmlMap;
  HtmlStyle htmlStyle = HtmlStyle::UserEnvironment;
};

/// The rules file's word for the style.
const char* nameOf(HtmlStyle style);

/// Reads a rules file: `version = "1.0";` and a list `clients` of groups, each a `client_name` and a list
/// `rules` of groups of the four texts `context`, `xml_map`, `html_map` and `html_format`. Settings besides
/// these are ignored.
///
/// @param file the file's name, for messages
/// @return     the rules in the file's order; no client has two for one context
/// @throws DiagnosedError with file and line when the text is anything else
std::vector<Rule> parseRules(const std::string& file, const std::string& text);

}  // namespace vestra::design_tool

#endif
