#include "design_tool/pages/report_record.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "design_tool/report/sections.h"
#include "reading/utf8.h"

namespace vestra::design_tool {

using reading::isUtf8;

namespace {

using Json = nlohmann::ordered_json;

std::string hexOf(const std::string& bytes) {
  std::string digits;
  for (const char byte : bytes) {
    digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  }
  return digits;
}

Json textOf(const std::string& bytes) {
  if (isUtf8(bytes)) {
    return bytes;
  }
  return {{"hex", hexOf(bytes)}};
}

Json clientsOf(const Report& report) {
  Json clients = Json::array();
  for (const Registration& registration : report.registrations) {
    clients.push_back(textOf(registration.client));
  }
  return clients;
}

Json itemsOf(const Report& report, const std::vector<Rule>& rules) {
  std::vector<bool> hasRule;
  for (const Section& section : report.sections) {
    hasRule.push_back(ruleFor(section, rules) != nullptr);
  }
  Json items = Json::array();
  for (const Item& item : report.items) {
    const Section& section = report.sections[item.section];
    items.push_back({{"client", textOf(section.client)},
                     {"key", textOf(item.key)},
                     {"value", textOf(item.value)},
                     {"context", textOf(section.context)},
                     {"line", item.line},
                     {"section_rule", static_cast<bool>(hasRule[item.section])}});
  }
  return items;
}

Json rulesOf(const std::vector<Rule>& rules) {
  Json list = Json::array();
  for (const Rule& rule : rules) {
    list.push_back({{"client", textOf(rule.client)},
                    {"context", textOf(rule.context)},
                    {"xml_map", textOf(rule.xmlMap)},
                    {"html_map", textOf(rule.htmlMap)},
                    {"html_format", nameOf(rule.htmlStyle)}});
  }
  return list;
}

Json warningsOf(const std::vector<std::string>& warnings) {
  Json list = Json::array();
  for (const std::string& warning : warnings) {
    list.push_back(textOf(warning));
  }
  return list;
}

}  // namespace

std::string renderRecord(const Report& report, const std::vector<Rule>& rules,
                         const std::vector<std::string>& warnings) {
  const Transmission& transmission = report.transmission;
  const Json record = {{"client_id", fmt::format("{}", transmission.clientId)},
                       {"registration_id", textOf(transmission.registrationId)},
                       {"intro", textOf(transmission.intro)},
                       {"vestra_dir", textOf(report.vestraDir)},
                       {"xml", textOf(transmission.xml)},
                       {"html", textOf(transmission.html)},
                       {"wdm", textOf(transmission.wdm)},
                       {"clients", clientsOf(report)},
                       {"items", itemsOf(report, rules)},
                       {"rules", rulesOf(rules)},
                       {"warnings", warningsOf(warnings)}};
  return record.dump(2) + "\n";
}

}  // namespace vestra::design_tool
