// The host's items, through the whole script, as a real interpreter reads them. The
// input is a line for each: a digit for the section, the key, a tab, the value.

#include <algorithm>
#include <cstdint>
#include <sstream>

#include "expect.h"
#include "report_under_test.h"

using vestra_fuzz::expect;
using vestra_fuzz::Item;

namespace {

constexpr std::size_t MOST_ITEMS = 50;

std::vector<Item> itemsIn(const std::string& text) {
  std::vector<Item> items;
  std::istringstream in(text);
  for (std::string line; items.size() < MOST_ITEMS && std::getline(in, line);) {
    if (line.empty()) {
      continue;
    }
    const std::size_t tab = std::min(line.find('\t'), line.size());
    const auto section = static_cast<Oza::Vestra::SectionType>(static_cast<unsigned char>(line[0]) % 6);
    items.push_back(
        {line.substr(1, tab > 0 ? tab - 1 : 0), line.substr(std::min(tab + 1, line.size())), section});
  }
  return items;
}

bool isPlain(const Item& item) { return vestra_fuzz::isPlain(item.key) && vestra_fuzz::isPlain(item.value); }

// A script can lose the registration of a client whose first context is empty; it is
// refused then.
bool fillsFirstContextOfEachClient(const std::vector<Item>& items) {
  const auto has = [&](unsigned int section) {
    return std::any_of(items.begin(), items.end(), [=](const Item& item) { return item.section == section; });
  };
  return has(2) && has(4);
}

std::size_t countIn(const vestra::design_tool::Report& report, const std::string& key,
                    const std::string& value) {
  return static_cast<std::size_t>(
      std::count_if(report.items.begin(), report.items.end(), [&](const auto& item) {
        return report.sections[item.section].client != "project" && item.key == key && item.value == value;
      }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<Item> items = itemsIn(std::string(reinterpret_cast<const char*>(data), size));
  const auto report = vestra_fuzz::reportOf(vestra_fuzz::scriptOf(items, "a#1#b#2#c#3#d#4#e#5#f#6"));
  if (!std::all_of(items.begin(), items.end(), isPlain) || !fillsFirstContextOfEachClient(items)) {
    return 0;
  }
  expect(report.has_value(), "a script of plain items is accepted");
  for (const Item& item : items) {
    if (item.section > 1) {
      const auto added = std::count_if(items.begin(), items.end(), [&](const Item& other) {
        return other.section > 1 && other.key == item.key && other.value == item.value;
      });
      expect(countIn(*report, item.key, item.value) == static_cast<std::size_t>(added),
             "each item is reported once");
    }
  }
  return 0;
}
