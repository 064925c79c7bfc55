#include "design_tool/report/sections.h"

#include <algorithm>

namespace vestra::design_tool {

const Rule* ruleFor(const Section& section, const std::vector<Rule>& rules) {
  const auto rule = std::find_if(rules.begin(), rules.end(), [&](const Rule& candidate) {
    return candidate.client == section.client && candidate.context == section.context;
  });
  return rule == rules.end() ? nullptr : &*rule;
}

std::vector<MappedSection> mapSections(const Report& report, const std::vector<Rule>& rules) {
  std::vector<MappedSection> mapped;
  for (const Rule& rule : rules) {
    mapped.push_back({&rule, rule.client, rule.context, {}});
  }
  std::vector<std::size_t> targets;
  for (const Section& section : report.sections) {
    const Rule* const rule = ruleFor(section, rules);
    targets.push_back(rule == nullptr ? mapped.size() : static_cast<std::size_t>(rule - rules.data()));
    if (rule == nullptr) {
      mapped.push_back({nullptr, section.client, section.context, {}});
    }
  }
  for (const Item& item : report.items) {
    mapped[targets[item.section]].items.push_back(&item);
  }
  return mapped;
}

}  // namespace vestra::design_tool
