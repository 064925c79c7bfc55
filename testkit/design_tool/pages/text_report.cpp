#include "design_tool/pages/text_report.h"

#include <algorithm>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::inQuotes;

namespace {

constexpr std::size_t WIDEST_KEY_COLUMN = 32;

std::size_t keyColumn(const Report& report) {
  std::size_t width = 0;
  for (const Item& item : report.items) {
    width = std::max(width, forTerminal(item.key).size());
  }
  return std::min(width, WIDEST_KEY_COLUMN);
}

std::string sectionTitle(const Section& section) {
  return fmt::format("\n  {} ({})\n", forTerminal(section.context), forTerminal(section.client));
}

}  // namespace

std::string renderText(const Report& report) {
  const std::size_t column = keyColumn(report);
  std::string text = fmt::format("Report {}, registration {}\n", report.transmission.clientId,
                                 inQuotes(report.transmission.registrationId));
  for (std::size_t section = 0; section < report.sections.size(); ++section) {
    text += sectionTitle(report.sections[section]);
    for (const Item& item : report.items) {
      if (item.section == section) {
        text += fmt::format("    {:<{}}  {}\n", forTerminal(item.key), column, forTerminal(item.value));
      }
    }
  }
  return text;
}

}  // namespace vestra::design_tool
