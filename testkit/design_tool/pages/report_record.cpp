#include "design_tool/pages/report_record.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "design_tool/report/sections.h"
#include "reading/byte_text.h"

namespace vestra::design_tool {

using reading::byteText;

namespace {

using Json = nlohmann::ordered_json;

Json itemsOf(const Report& report, const std::vector<Rule>& rules) {
  std::vector<bool> hasRule;
  for (const Section& section : report.sections) {
    hasRule.push_back(ruleFor(section, rules) != nullptr);
  }
  Json items = Json::array();
  for (const Item& item : report.items) {
    const Section& section = report.sections[item.section];
    items.push_back({{"client", byteText(section.client)},
                     {"key", byteText(item.key)},
                     {"value", byteText(item.value)},
                     {"context", byteText(section.context)},
                     {"line", item.line},
                     {"section_rule", static_cast<bool>(hasRule[item.section])}});
  }
  return items;
}

Json rulesOf(const std::vector<Rule>& rules) {
  Json list = Json::array();
  for (const Rule& rule : rules) {
    list.push_back({{"client", byteText(rule.client)},
                    {"context", byteText(rule.context)},
                    {"xml_map", byteText(rule.xmlMap)},
                    {"html_map", byteText(rule.htmlMap)},
                    {"html_format", nameOf(rule.htmlStyle)}});
  }
  return list;
}

template <typename Entries, typename TextOf>
Json textsOf(const Entries& entries, TextOf textOf) {
  Json list = Json::array();
  for (const auto& entry : entries) {
    list.push_back(byteText(textOf(entry)));
  }
  return list;
}

}  // namespace

std::string renderRecord(const Report& report, const std::vector<Rule>& rules,
                         const std::vector<std::string>& warnings) {
  const Transmission& transmission = report.transmission;
  const Json record = {
      {"client_id", fmt::format("{}", transmission.clientId)},
      {"registration_id", byteText(transmission.registrationId)},
      {"intro", byteText(transmission.intro)},
      {"vestra_dir", byteText(report.vestraDir)},
      {"xml", byteText(transmission.xml)},
      {"html", byteText(transmission.html)},
      {"wdm", byteText(transmission.wdm)},
      {"clients", textsOf(report.registrations, [](const auto& entry) { return entry.client; })},
      {"items", itemsOf(report, rules)},
      {"rules", rulesOf(rules)},
      {"warnings", textsOf(warnings, [](const auto& entry) { return entry; })}};
  return record.dump(2) + "\n";
}

}  // namespace vestra::design_tool
