#include "design_tool/pages/headings.h"

#include <algorithm>
#include <map>

namespace vestra::design_tool {
namespace {

const std::string& pathOf(const MappedSection& section) {
  return section.rule == nullptr ? section.context : section.rule->htmlMap;
}

std::string asWords(std::string text) {
  std::replace(text.begin(), text.end(), '_', ' ');
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  }
  return text;
}

std::string shortest(const MappedSection& section) {
  const std::string& path = pathOf(section);
  return asWords(path.substr(path.find_last_of('\\') + 1));
}

std::string longer(const MappedSection& section) { return asWords(pathOf(section)); }

std::string longest(const MappedSection& section) {
  return longer(section) + " (" + section.client + ", " + section.context + ")";
}

}  // namespace

std::vector<std::string> headingsOf(const std::vector<MappedSection>& sections) {
  std::vector<std::string> headings(sections.size());
  std::transform(sections.begin(), sections.end(), headings.begin(), shortest);
  for (const auto lengthen : {longer, longest}) {
    std::map<std::string, int> uses;
    for (const std::string& heading : headings) {
      ++uses[heading];
    }
    for (std::size_t i = 0; i < headings.size(); ++i) {
      if (uses[headings[i]] > 1) {
        headings[i] = lengthen(sections[i]);
      }
    }
  }
  return headings;
}

}  // namespace vestra::design_tool
