#include "design_tool/pages/text_report.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::WrittenItem;

namespace {

constexpr std::size_t WIDEST_KEY_COLUMN = 32;

std::string valueOf(const WrittenItem& item) {
  return reading::isBlank(item.value) ? reading::namedBytes(item.value) : forTerminal(item.value);
}

}  // namespace

std::string renderText(const std::vector<WrittenItem>& items,
                       const std::map<std::size_t, std::string>& hazards) {
  std::size_t column = 0;
  for (const WrittenItem& item : items) {
    column = std::min(std::max(column, forTerminal(item.key).size()), WIDEST_KEY_COLUMN);
  }
  std::vector<std::pair<std::string, std::string>> sections;
  for (const WrittenItem& item : items) {
    const std::string title =
        fmt::format("\n  {} ({})\n", forTerminal(item.context), forTerminal(item.client));
    auto section = std::find_if(sections.begin(), sections.end(),
                                [&](const auto& known) { return known.first == title; });
    if (section == sections.end()) {
      section = sections.insert(section, {title, ""});
    }
    const auto hazard = hazards.find(item.line);
    const bool isHazard = hazard != hazards.end();
    section->second +=
        fmt::format("  {} {:<{}}  {}\n", isHazard ? '!' : ' ', forTerminal(item.key), column, valueOf(item));
    if (isHazard) {
      section->second += fmt::format("    {:<{}}  ({})\n", "", column, hazard->second);
    }
  }
  std::string text;
  for (const auto& [title, lines] : sections) {
    text += title + lines;
  }
  return text;
}

}  // namespace vestra::design_tool
