#include "design_tool/pages/text_report.h"

#include <algorithm>
#include <map>

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

std::string valueOf(const Item& item) {
  return reading::isBlank(item.value) ? reading::namedBytes(item.value) : forTerminal(item.value);
}

using Marks = std::multimap<std::size_t, std::string>;

Marks byLine(const std::vector<Warning>& warnings) {
  Marks marks;
  for (const Warning& warning : warnings) {
    marks.emplace(warning.line, warning.message);
  }
  return marks;
}

std::string itemText(const Item& item, std::size_t column, const Marks& marks) {
  const auto [begin, end] = marks.equal_range(item.line);
  std::string text = fmt::format("  {} {:<{}}  {}\n", begin == end ? ' ' : '!', forTerminal(item.key), column,
                                 valueOf(item));
  for (auto mark = begin; mark != end; ++mark) {
    text += fmt::format("    {:<{}}  ({})\n", "", column, mark->second);
  }
  return text;
}

std::string headOf(const Report& report, bool isCorrupt) {
  return isCorrupt ? std::string("Corrupt script; what can be read of it:\n")
                   : fmt::format("Report {}, registration {}\n", report.transmission.clientId,
                                 inQuotes(report.transmission.registrationId));
}

}  // namespace

std::string renderText(const Report& report, const std::vector<Warning>& marks, bool isCorrupt) {
  const std::size_t column = keyColumn(report);
  const Marks marked = byLine(marks);
  std::string text = headOf(report, isCorrupt);
  for (std::size_t section = 0; section < report.sections.size(); ++section) {
    text += sectionTitle(report.sections[section]);
    for (const Item& item : report.items) {
      if (item.section == section) {
        text += itemText(item, column, marked);
      }
    }
  }
  return text;
}

}  // namespace vestra::design_tool
