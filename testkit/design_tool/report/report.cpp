#include "design_tool/report/report.h"

#include <algorithm>

namespace vestra::design_tool {
namespace {

constexpr const char* SHARED_CLIENT = "project";

template <typename Entries>
std::string firstProductAmong(const Entries& entries) {
  const auto product = std::find_if(entries.begin(), entries.end(),
                                    [](const auto& entry) { return entry.client != SHARED_CLIENT; });
  return product == entries.end() ? "" : product->client;
}

/// The word before " Usage Report".
std::string productNamedIn(const std::string& intro) {
  const std::size_t end = intro.find(" Usage Report");
  if (end == std::string::npos) {
    return "";
  }
  const std::string head = intro.substr(0, end);
  std::string word = head.substr(head.find_last_of("> ") + 1);
  for (char& letter : word) {
    letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return word;
}

}  // namespace

std::string projectValue(const Report& report, const std::string& key) {
  const auto item = std::find_if(report.items.begin(), report.items.end(), [&](const Item& candidate) {
    return candidate.key == key && report.sections[candidate.section].client == SHARED_CLIENT;
  });
  return item == report.items.end() ? "" : item->value;
}

std::string productOf(const Report& report) {
  const std::string named = productNamedIn(report.transmission.intro);
  if (!named.empty()) {
    return named;
  }
  const std::string registered = firstProductAmong(report.registrations);
  return registered.empty() ? firstProductAmong(report.sections) : registered;
}

}  // namespace vestra::design_tool
