#include "design_tool/report/suspicions.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include <fmt/format.h>

#include "design_tool/report/sections.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

using Warnings = std::vector<Warning>;

void warnOfRegistrations(const Report& report, Warnings& warnings) {
  if (report.registrations.empty()) {
    warnings.push_back({report.transmission.line, "no client is registered"});
  }
  std::map<std::string, std::size_t> firstLines;
  for (const auto& [client, line] : report.registrations) {
    if (client.empty()) {
      warnings.push_back({line, "the client that is registered has no name"});
    }
    const auto [first, isNew] = firstLines.emplace(client, line);
    if (!isNew) {
      warnings.push_back({line, fmt::format("client {} is registered again, first on line {}",
                                            inQuotes(client), first->second)});
    }
  }
}

void warnOfSections(const Report& report, const std::vector<Rule>& rules, Warnings& warnings) {
  std::set<std::string> known;
  for (const Registration& registration : report.registrations) {
    known.insert(registration.client);
  }
  for (const Section& section : report.sections) {
    if (known.insert(section.client).second) {
      warnings.push_back({section.line, fmt::format("client {} has data but was never registered",
                                                    inQuotes(section.client))});
    }
    if (ruleFor(section, rules) == nullptr) {
      warnings.push_back({section.line, fmt::format("context {} of client {} has no rule",
                                                    inQuotes(section.context), inQuotes(section.client))});
    }
  }
}

void warnOfKeys(const Report& report, Warnings& warnings) {
  struct First {
    std::size_t line;
    bool isRepeated;
  };
  std::vector<std::unordered_map<std::string, First>> seen(report.sections.size());
  for (const Item& item : report.items) {
    const auto [first, isNew] = seen[item.section].emplace(item.key, First{item.line, false});
    if (!isNew && !first->second.isRepeated) {
      first->second.isRepeated = true;
      warnings.push_back(
          {item.line, fmt::format("key {} occurs again in context {}, first on line {}", inQuotes(item.key),
                                  inQuotes(report.sections[item.section].context), first->second.line)});
    }
    if (item.key.find_first_of(" \t\n\v\f\r") != std::string::npos) {
      warnings.push_back({item.line, fmt::format("key {} holds white space", inQuotes(item.key))});
    }
  }
}

}  // namespace

Warnings suspicionsAbout(const Report& report, const std::vector<Rule>& rules) {
  Warnings warnings = report.warnings;
  warnOfRegistrations(report, warnings);
  warnOfSections(report, rules, warnings);
  warnOfKeys(report, warnings);
  std::stable_sort(warnings.begin(), warnings.end(),
                   [](const Warning& one, const Warning& other) { return one.line < other.line; });
  return warnings;
}

}  // namespace vestra::design_tool
