#include "design_tool/report/suspicions.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <tcl.h>

#include "design_tool/report/sections.h"
#include "reading/visible_text.h"
#include "reading/written_items.h"

namespace vestra::design_tool {

using reading::inQuotes;
using reading::WrittenItem;

namespace {

using Warnings = std::vector<Warning>;

constexpr std::time_t HOUR = 3600;
constexpr int HOURS_OF_A_DAY = 24;

void warnOfChange(const char* what, std::size_t line, const std::string& written, const std::string& read,
                  Warnings& warnings) {
  if (read != written) {
    warnings.push_back(
        {line, fmt::format("Tcl has changed the {}: {} became {}", what, inQuotes(written), inQuotes(read))});
  }
}

/// Compares what the library has written with what the interpreter has read on the same lines.
void warnOfChanges(const Report& report, const std::vector<WrittenItem>& items, Warnings& warnings) {
  auto read = report.items.begin();
  for (const WrittenItem& item : items) {
    const auto feeds = std::count(item.value.begin(), item.value.end(), '\n');
    const std::size_t lastLine = item.line + static_cast<std::size_t>(feeds);
    read = std::find_if(read, report.items.end(), [&](const Item& other) { return other.line >= item.line; });
    const auto end =
        std::find_if(read, report.items.end(), [&](const Item& other) { return other.line > lastLine; });
    if (end - read == 1) {
      warnOfChange("key", item.line, item.key, read->key, warnings);
      warnOfChange("value", item.line, item.value, read->value, warnings);
    } else if (end - read > 1) {
      warnings.push_back({item.line, fmt::format("the value of key {} ends its command and adds {} more",
                                                 inQuotes(item.key), end - read - 1)});
    }
    read = end;
  }
}

/// What the checksum is made of, but for the hour. The library's ends at the first NUL.
std::string checksumText(const Report& report, const std::vector<WrittenItem>& items) {
  std::multimap<std::size_t, std::string> parts;
  for (const Registration& registration : report.registrations) {
    parts.emplace(registration.line, registration.client);
  }
  for (const WrittenItem& item : items) {
    parts.emplace(item.line, item.key + item.value + item.client + item.context);
  }
  std::string text;
  for (const auto& part : parts) {
    text += part.second;
  }
  return text.substr(0, text.find('\0'));
}

std::uint32_t crc32(std::uint32_t checksum, const std::string& text) {
  return Tcl_ZlibCRC32(checksum, reinterpret_cast<const unsigned char*>(text.data()),
                       static_cast<int>(text.size()));
}

std::uint32_t checksumAt(std::time_t time, const std::string& text) {
  return crc32(crc32(0, fmt::format("{:%j%Y%H}", fmt::localtime(time))), text);
}

void warnOfChecksum(const Report& report, const std::string& text, std::time_t written, Warnings& warnings) {
  const std::uint32_t number = report.transmission.clientId;
  for (int hours = 0; hours <= HOURS_OF_A_DAY; ++hours) {
    if (checksumAt(written - hours * HOUR, text) == number ||
        checksumAt(written + hours * HOUR, text) == number) {
      return;
    }
  }
  warnings.push_back({report.transmission.line,
                      fmt::format("-clientid {} is not the checksum of what is reported: {} is expected of a "
                                  "script of {:%Y-%m-%d %H:00}",
                                  number, checksumAt(written, text), fmt::localtime(written))});
}

void warnOfSections(const Report& report, const std::vector<Rule>& rules, Warnings& warnings) {
  std::set<std::string> known;
  for (const Registration& registration : report.registrations) {
    known.insert(registration.client);
  }
  for (const Section& section : report.sections) {
    if (known.insert(section.client).second) {
      warnings.push_back({section.line, fmt::format("client {} has data but was never registered",
                                                    inQuotes(section.client))});
    }
    if (ruleFor(section, rules) == nullptr) {
      warnings.push_back({section.line, fmt::format("context {} of client {} has no rule",
                                                    inQuotes(section.context), inQuotes(section.client))});
    }
  }
}

void warnOfRepeatedKeys(const Report& report, Warnings& warnings) {
  struct First {
    std::size_t line;
    bool isRepeated;
  };
  std::vector<std::unordered_map<std::string, First>> seen(report.sections.size());
  for (const Item& item : report.items) {
    const auto [first, isNew] = seen[item.section].emplace(item.key, First{item.line, false});
    if (!isNew && !first->second.isRepeated) {
      first->second.isRepeated = true;
      warnings.push_back(
          {item.line, fmt::format("key {} occurs again in context {}, first on line {}", inQuotes(item.key),
                                  inQuotes(report.sections[item.section].context), first->second.line)});
    }
  }
}

}  // namespace

Warnings suspicionsAbout(const Report& report, const std::vector<Rule>& rules, std::string_view script,
                         std::time_t written) {
  const std::vector<WrittenItem> items = reading::itemsWrittenIn(script);
  Warnings warnings;
  warnOfChanges(report, items, warnings);
  warnOfSections(report, rules, warnings);
  warnOfRepeatedKeys(report, warnings);
  warnOfChecksum(report, checksumText(report, items), written, warnings);
  std::stable_sort(warnings.begin(), warnings.end(),
                   [](const Warning& one, const Warning& other) { return one.line < other.line; });
  return warnings;
}

}  // namespace vestra::design_tool
