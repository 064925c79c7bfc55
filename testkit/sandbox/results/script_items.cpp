#include "sandbox/results/script_items.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "reading/hazard.h"
#include "reading/written_items.h"

namespace vestra::testkit {
namespace {

using reading::WrittenItem;

// By Oza::Vestra::SectionType.
constexpr std::array<const char*, 6> CLIENTS = {"project", "project", "kelvo", "kelvo", "tavlo", "tavlo"};
constexpr std::array<const char*, 6> CONTEXTS = {"software_version_and_target_device", "user_environment",
                                                 "kelvo\\command_line_options",        "kelvo\\usage",
                                                 "tavlo\\command_line_options",        "tavlo\\usage"};

WrittenItem handed(const AddedItem& item) {
  return {CLIENTS.at(item.section), CONTEXTS.at(item.section), item.key, item.value, 0};
}

std::vector<WrittenItem> handed(const std::vector<AddedItem>& added) {
  std::vector<WrittenItem> items;
  std::transform(added.begin(), added.end(), std::back_inserter(items),
                 [](const AddedItem& item) { return handed(item); });
  return items;
}

WrittenItem written(const Item& item) { return {item.client, item.context, item.key, item.value, 0}; }

std::vector<Hazard> itemsReadOtherwise(const HostRun& run) {
  std::vector<Hazard> found;
  for (const Item& item : run.writtenItems) {
    if (const auto reason = reading::hazardOf(written(item))) {
      found.push_back({item, *reason});
    }
  }
  return found;
}

/// Where the texts give no reason, the design tool's report may yet differ.
std::vector<Hazard> itemReportedOtherwise(const HostRun& run) {
  const Report* const report = run.report();
  if (report == nullptr) {
    return {};
  }
  const auto [item, read] = std::mismatch(run.writtenItems.begin(), run.writtenItems.end(),
                                          report->items.begin(), report->items.end());
  if (item == run.writtenItems.end()) {
    return {};
  }
  return {{*item, read == report->items.end() ? "the design tool does not report it"
                                              : "the design tool reports something else in its place"}};
}

// The library brings these keys to lower case with the host's locale. A Turkish or Azeri
// one does not make a capital I an i, and then the report leaves the item out.
bool isLostInSomeLocales(const AddedItem& item) {
  return item.section == Oza::Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE &&
         item.key.find('I') != std::string::npos;
}

std::vector<Hazard> itemsLostInSomeLocales(const HostRun& run) {
  std::vector<Hazard> found;
  for (const AddedItem& item : run.added) {
    if (isLostInSomeLocales(item)) {
      found.push_back({{CLIENTS.at(item.section), CONTEXTS.at(item.section), item.key, item.value},
                       "the key holds a capital I, which Turkish and Azeri locales do not make an i"});
    }
  }
  return found;
}

}  // namespace

std::optional<std::vector<Item>> itemsWrittenIn(const std::string& script,
                                                const std::vector<AddedItem>& added,
                                                std::chrono::steady_clock::time_point deadline) {
  bool isTimeUp = false;
  const auto read = reading::itemsWrittenIn(
      script, handed(added), [&] { return isTimeUp = std::chrono::steady_clock::now() >= deadline; });
  if (isTimeUp) {
    return std::nullopt;
  }
  std::vector<Item> items;
  std::transform(read.begin(), read.end(), std::back_inserter(items), [](const WrittenItem& item) {
    return Item{item.client, item.context, item.key, item.value};
  });
  return items;
}

std::string contextOf(Oza::Vestra::SectionType section) { return CONTEXTS.at(section); }

std::vector<Hazard> HostRun::hazards() const {
  std::vector<Hazard> found = itemsReadOtherwise(*this);
  if (found.empty()) {
    found = itemReportedOtherwise(*this);
  }
  const std::vector<Hazard> lost = itemsLostInSomeLocales(*this);
  found.insert(found.end(), lost.begin(), lost.end());
  return found;
}

}  // namespace vestra::testkit
