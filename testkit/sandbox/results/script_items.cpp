#include "sandbox/results/script_items.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <utility>

#include "reading/hazard.h"
#include "reading/visible_text.h"
#include "reading/written_items.h"

namespace vestra::testkit {
namespace {

using reading::WrittenItem;

// By Oza::Vestra::SectionType.
constexpr std::array<const char*, 6> CLIENTS = {"project", "project", "kelvo", "kelvo", "tavlo", "tavlo"};
constexpr std::array<const char*, 6> CONTEXTS = {"software_version_and_target_device", "user_environment",
                                                 "kelvo\\command_line_options",        "kelvo\\usage",
                                                 "tavlo\\command_line_options",        "tavlo\\usage"};

std::string clientOf(Oza::Vestra::SectionType section) {
  return section < CLIENTS.size() ? CLIENTS.at(section) : "";
}

WrittenItem handed(const AddedItem& item) {
  return {clientOf(item.section), contextOf(item.section), item.key, item.value, 0};
}

std::vector<WrittenItem> handed(const std::vector<AddedItem>& added) {
  std::vector<WrittenItem> items;
  for (const AddedItem& item : added) {
    if (item.section < CONTEXTS.size()) {
      items.push_back(handed(item));
    }
  }
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

std::string lowerCased(std::string text) {
  for (char& letter : text) {
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  return text;
}

/// What the design tool read or, where it made no report, was to read.
std::vector<const std::vector<Item>*> itemListsOf(const HostRun& run) {
  std::vector<const std::vector<Item>*> lists{&run.writtenItems};
  for (const Report& report : run.reports) {
    lists.push_back(&report.items);
  }
  return lists;
}

/// Why the fact is in no report as it was added; nothing where it is in one.
std::optional<std::string> reasonWhyLost(const AddedItem& fact, const HostRun& run) {
  std::string reason = "the report leaves out the key, which is none of the project's facts";
  for (const std::vector<Item>* items : itemListsOf(run)) {
    for (const Item& item : *items) {
      if (item.context == CONTEXTS[0] && lowerCased(item.key) == lowerCased(fact.key)) {
        if (item.value == fact.value) {
          return std::nullopt;
        }
        reason = "the report has " + reading::inQuotes(item.value) + " for this key instead";
      }
    }
  }
  return reason;
}

// The library brings the keys of facts to lower case with the host's locale. A Turkish or Azeri one
// does not make a capital I an i, and then the report leaves the item out.
std::optional<std::string> hazardOf(const AddedItem& item, const HostRun& run) {
  if (item.section >= CONTEXTS.size()) {
    return "the section is none of the six";
  }
  if (!item.precedesSend) {
    return "the report leaves out the item, which no send follows";
  }
  if (item.section != Oza::Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE) {
    return std::nullopt;
  }
  const auto lost = reasonWhyLost(item, run);
  return lost || item.key.find('I') == std::string::npos
             ? lost
             : "the key holds a capital I, which Turkish and Azeri locales do not make an i";
}

std::vector<Hazard> itemsLost(const HostRun& run) {
  std::vector<Hazard> found;
  for (const AddedItem& item : run.added) {
    if (const auto reason = hazardOf(item, run)) {
      found.push_back({{clientOf(item.section), contextOf(item.section), item.key, item.value}, *reason});
    }
  }
  return found;
}

/// The library quotes a project directory neither in the script nor for the shell.
std::vector<Hazard> directoriesReadOtherwise(const HostRun& run) {
  std::vector<Hazard> found;
  for (const Send& send : run.sends) {
    const std::string& directory = send.projectDirectory;
    const std::size_t at = directory.find_first_of(" \t\n\v\f\r\"'`$\\;&|<>()[{*?");
    if (at != std::string::npos) {
      found.push_back({{"", "send", "project directory", directory},
                       "it holds " + reading::inQuotes(directory.substr(at, 1)) +
                           ", which the shell or the interpreter does not take for a character of a name"});
    }
  }
  return found;
}

void append(std::vector<Hazard>& hazards, const std::vector<Hazard>& others) {
  hazards.insert(hazards.end(), others.begin(), others.end());
}

}  // namespace

std::vector<Item> itemsWrittenIn(const std::string& script, const std::vector<AddedItem>& added) {
  std::vector<Item> items;
  for (WrittenItem& item : reading::itemsWrittenIn(script, handed(added))) {
    items.push_back(
        {std::move(item.client), std::move(item.context), std::move(item.key), std::move(item.value)});
  }
  return items;
}

std::string contextOf(Oza::Vestra::SectionType section) {
  return section < CONTEXTS.size() ? CONTEXTS.at(section) : "section " + std::to_string(section);
}

std::vector<Hazard> HostRun::hazards() const {
  std::vector<Hazard> found = directoriesReadOtherwise(*this);
  append(found, itemsReadOtherwise(*this));
  if (hasScript()) {
    append(found, itemsLost(*this));
  }
  return found.empty() ? itemReportedOtherwise(*this) : found;
}

}  // namespace vestra::testkit
