#include "design_tool/report/report.h"

#include <algorithm>

namespace vestra::design_tool {
namespace {

constexpr const char* SHARED_CLIENT = "project";

}  // namespace

std::string projectValue(const Report& report, const std::string& key) {
  const auto item = std::find_if(report.items.begin(), report.items.end(), [&](const Item& candidate) {
    return candidate.key == key && report.sections[candidate.section].client == SHARED_CLIENT;
  });
  return item == report.items.end() ? "" : item->value;
}

std::string titleOf(const Report& report) {
  const std::string& intro = report.transmission.intro;
  const std::string begin = "<H3>";
  const std::string end = "</H3><BR>";
  const bool isFramed = intro.size() > begin.size() + end.size() && intro.rfind(begin, 0) == 0 &&
                        intro.find(end) == intro.size() - end.size();
  return isFramed ? intro.substr(begin.size(), intro.size() - begin.size() - end.size()) : intro;
}

std::string productOf(const Report& report) {
  const auto registered =
      std::find_if(report.registrations.begin(), report.registrations.end(),
                   [](const Registration& registration) { return registration.client != SHARED_CLIENT; });
  return registered == report.registrations.end() ? "" : registered->client;
}

}  // namespace vestra::design_tool
