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

void warnOfRepeatedRegistrations(const Report& report, Warnings& warnings) {
  std::map<std::string, std::size_t> firstLines;
  for (const Registration& registration : report.registrations) {
    const auto [first, isNew] = firstLines.emplace(registration.client, registration.line);
    if (isNew) {
      continue;
    }
    warnings.push_back({registration.line, fmt::format("client {} is registered again, first on line {}",
                                                       inQuotes(registration.client), first->second)});
  }
}

void warnOfMissingClients(const Report& report, Warnings& warnings) {
  if (report.registrations.empty()) {
    warnings.push_back({report.transmission.line, "no client is registered"});
  }
  for (const Registration& registration : report.registrations) {
    if (registration.client.empty()) {
      warnings.push_back({registration.line, "the client that is registered has no name"});
    }
  }
}

std::vector<std::size_t> linesOfFirstItems(const Report& report) {
  std::vector<std::size_t> lines(report.sections.size(), 0);
  for (const Item& item : report.items) {
    if (lines[item.section] == 0) {
      lines[item.section] = item.line;
    }
  }
  return lines;
}

void warnOfUnregisteredClients(const Report& report, const std::vector<std::size_t>& firstLines,
                               Warnings& warnings) {
  std::set<std::string> known;
  for (const Registration& registration : report.registrations) {
    known.insert(registration.client);
  }
  for (std::size_t i = 0; i < report.sections.size(); ++i) {
    const std::string& client = report.sections[i].client;
    if (!known.insert(client).second) {
      continue;
    }
    warnings.push_back(
        {firstLines[i], fmt::format("client {} has data but was never registered", inQuotes(client))});
  }
}

void warnOfMissingRules(const Report& report, const std::vector<Rule>& rules,
                        const std::vector<std::size_t>& firstLines, Warnings& warnings) {
  for (std::size_t i = 0; i < report.sections.size(); ++i) {
    const Section& section = report.sections[i];
    if (ruleFor(section, rules) != nullptr) {
      continue;
    }
    warnings.push_back({firstLines[i], fmt::format("context {} of client {} has no rule",
                                                   inQuotes(section.context), inQuotes(section.client))});
  }
}

void warnOfRepeatedKeys(const Report& report, Warnings& warnings) {
  struct First {
    std::size_t line;
    bool isRepeated;
  };
  std::vector<std::unordered_map<std::string, First>> seen(report.sections.size());
  for (const Item& item : report.items) {
    const auto [first, isNew] = seen[item.section].emplace(item.key, First{item.line, false});
    if (isNew || first->second.isRepeated) {
      continue;
    }
    first->second.isRepeated = true;
    warnings.push_back(
        {item.line, fmt::format("key {} occurs again in context {}, first on line {}", inQuotes(item.key),
                                inQuotes(report.sections[item.section].context), first->second.line)});
  }
}

void warnOfWhiteSpaceInKeys(const Report& report, Warnings& warnings) {
  for (const Item& item : report.items) {
    if (item.key.find_first_of(" \t\n\v\f\r") == std::string::npos) {
      continue;
    }
    warnings.push_back({item.line, fmt::format("key {} holds white space", inQuotes(item.key))});
  }
}

bool isEarlier(const Warning& left, const Warning& right) { return left.line < right.line; }

}  // namespace

Warnings suspicionsAbout(const Report& report, const std::vector<Rule>& rules) {
  Warnings warnings = report.warnings;
  const std::vector<std::size_t> firstLines = linesOfFirstItems(report);
  warnOfMissingClients(report, warnings);
  warnOfRepeatedRegistrations(report, warnings);
  warnOfUnregisteredClients(report, firstLines, warnings);
  warnOfMissingRules(report, rules, firstLines, warnings);
  warnOfRepeatedKeys(report, warnings);
  warnOfWhiteSpaceInKeys(report, warnings);
  std::stable_sort(warnings.begin(), warnings.end(), isEarlier);
  return warnings;
}

}  // namespace vestra::design_tool
