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

}  // namespace

std::string projectValue(const Report& report, const std::string& key) {
  const auto item = std::find_if(report.items.begin(), report.items.end(), [&](const Item& candidate) {
    return candidate.key == key && report.sections[candidate.section].client == SHARED_CLIENT;
  });
  return item == report.items.end() ? "" : item->value;
}

std::string productOf(const Report& report) {
  const std::string registered = firstProductAmong(report.registrations);
  return registered.empty() ? firstProductAmong(report.sections) : registered;
}

}  // namespace vestra::design_tool
