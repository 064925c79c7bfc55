#include "design_tool/pages/xml_report.h"

#include <sstream>

#include <fmt/format.h>
#include <pugixml.hpp>

#include "design_tool/report/sections.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::escapedForXml;
using reading::isXmlText;

namespace {

/// The bytes as XML can hold them; the element says which of its parts are escaped.
std::string held(pugi::xml_node element, const char* part, const std::string& bytes) {
  if (isXmlText(bytes)) {
    return bytes;
  }
  pugi::xml_attribute mark = element.attribute("escaped");
  if (!mark) {
    mark = element.append_attribute("escaped");
  }
  const std::string marked = mark.value();
  mark.set_value((marked.empty() ? part : marked + " " + part).c_str());
  return escapedForXml(bytes);
}

void addAttribute(pugi::xml_node element, const char* name, const std::string& bytes) {
  element.append_attribute(name).set_value(held(element, name, bytes).c_str());
}

void setContent(pugi::xml_node element, const std::string& bytes) {
  if (!bytes.empty()) {
    element.append_child(pugi::node_pcdata).set_value(held(element, "text", bytes).c_str());
  }
}

void addItem(pugi::xml_node section, const Item& item) {
  pugi::xml_node element = section.append_child("item");
  addAttribute(element, "key", item.key);
  setContent(element, item.value);
}

void addSection(pugi::xml_node root, const MappedSection& section) {
  pugi::xml_node element = root.append_child("section");
  addAttribute(element, "client", section.client);
  addAttribute(element, "context", section.context);
  if (section.rule != nullptr) {
    addAttribute(element, "name", section.rule->xmlMap);
  }
  for (const Item* item : section.items) {
    addItem(element, *item);
  }
}

void addRoot(pugi::xml_document& document, const Report& report, const std::vector<Rule>& rules) {
  pugi::xml_node root = document.append_child("usage_statistics");
  addAttribute(root, "client_id", fmt::format("{}", report.transmission.clientId));
  addAttribute(root, "registration_id", report.transmission.registrationId);
  addAttribute(root, "vestra_dir", report.vestraDir);
  setContent(root.append_child("intro"), report.transmission.intro);
  for (const Registration& registration : report.registrations) {
    addAttribute(root.append_child("client"), "name", registration.client);
  }
  for (const MappedSection& section : mapSections(report, rules)) {
    addSection(root, section);
  }
}

void addDeclaration(pugi::xml_document& document) {
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
}

}  // namespace

std::string renderXml(const Report& report, const std::vector<Rule>& rules) {
  pugi::xml_document document;
  addDeclaration(document);
  addRoot(document, report, rules);
  std::ostringstream text;
  document.save(text, "  ", pugi::format_indent, pugi::encoding_utf8);
  return text.str();
}

}  // namespace vestra::design_tool
