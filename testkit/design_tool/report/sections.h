#ifndef VESTRA_DESIGN_TOOL_SECTIONS_H
#define VESTRA_DESIGN_TOOL_SECTIONS_H

#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/rules/rules.h"

namespace vestra::design_tool {

/// A section of the reports: a rule and what it maps, or data that no rule maps.
struct MappedSection {
  /// Null for data without a rule.
  const Rule* rule = nullptr;
  std::string client;
  std::string context;
  std::vector<const Item*> items;

  /// Where the section belongs on the HTML page.
  const std::string& path() const { return rule == nullptr ? context : rule->htmlMap; }
};

/// The rule for a client's context; null where there is none.
const Rule* ruleFor(const Section& section, const std::vector<Rule>& rules);

/// One section for each rule, in the rules' order and whether it has data or not; then what no rule maps, in
/// the report's order, so that nothing is lost. Refers to both arguments.
std::vector<MappedSection> mapSections(const Report& report, const std::vector<Rule>& rules);

}  // namespace vestra::design_tool

#endif
