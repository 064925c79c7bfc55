#include "design_tool/report/checksum.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <tcl.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::WrittenItem;

namespace {

constexpr std::time_t HOUR = 3600;
constexpr int HOURS_OF_A_DAY = 24;

using Segments = std::vector<std::pair<std::size_t, std::string>>;

/// The text behind the hour. The library's checksum ends at the first NUL.
std::string textOf(const Report& report, Segments segments) {
  for (const Registration& registration : report.registrations) {
    segments.emplace_back(registration.line, registration.client);
  }
  std::stable_sort(segments.begin(), segments.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  std::string text;
  for (const auto& segment : segments) {
    text += segment.second;
  }
  return text.substr(0, text.find('\0'));
}

std::string textAsWritten(const Report& report, const std::vector<WrittenItem>& items) {
  Segments segments;
  for (const WrittenItem& item : items) {
    segments.emplace_back(item.line, item.key + item.value + item.client + item.context);
  }
  return textOf(report, std::move(segments));
}

std::string textAsRead(const Report& report) {
  Segments segments;
  for (const Item& item : report.items) {
    const Section& section = report.sections[item.section];
    segments.emplace_back(item.line, item.key + item.value + section.client + section.context);
  }
  return textOf(report, std::move(segments));
}

std::uint32_t crc32(std::uint32_t checksum, const std::string& text) {
  return Tcl_ZlibCRC32(checksum, reinterpret_cast<const unsigned char*>(text.data()),
                       static_cast<int>(text.size()));
}

std::uint32_t checksumAt(std::time_t time, const std::string& text) {
  return crc32(crc32(0, fmt::format("{:%j%Y%H}", fmt::localtime(time))), text);
}

bool agrees(const std::string& text, std::uint32_t number, std::time_t written) {
  for (int hours = 0; hours <= HOURS_OF_A_DAY; ++hours) {
    if (checksumAt(written - hours * HOUR, text) == number ||
        checksumAt(written + hours * HOUR, text) == number) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::vector<Warning> checksumWarnings(const Report& report, std::string_view script, std::time_t written) {
  const std::vector<WrittenItem> items = reading::itemsWrittenIn(script);
  std::vector<Warning> warnings = injectedItems(report, items);
  const Transmission& transmission = report.transmission;
  const std::string asWritten = textAsWritten(report, items);
  const std::string asRead = textAsRead(report);
  const bool isAgreed = agrees(asWritten, transmission.clientId, written) ||
                        (asRead != asWritten && agrees(asRead, transmission.clientId, written));
  if (!isAgreed) {
    const std::uint32_t expected = checksumAt(written, items.empty() ? asRead : asWritten);
    warnings.push_back(
        {transmission.line,
         fmt::format("-clientid {} is not the checksum of what is reported: {} is expected of a "
                     "script of {:%Y-%m-%d %H:00}",
                     transmission.clientId, expected, fmt::localtime(written))});
  }
  return warnings;
}

std::vector<Warning> injectedItems(const Report& report, const std::vector<WrittenItem>& written) {
  std::vector<Warning> warnings;
  auto read = report.items.begin();
  for (const WrittenItem& item : written) {
    const auto feeds = std::count(item.value.begin(), item.value.end(), '\n');
    const std::size_t lastLine = item.line + static_cast<std::size_t>(feeds);
    read = std::find_if(read, report.items.end(), [&](const Item& other) { return other.line >= item.line; });
    const auto end =
        std::find_if(read, report.items.end(), [&](const Item& other) { return other.line > lastLine; });
    if (end - read > 1) {
      warnings.push_back({item.line, fmt::format("the value of key {} ends its command and adds {} more",
                                                 reading::inQuotes(item.key), end - read - 1)});
    }
    read = end;
  }
  return warnings;
}

}  // namespace vestra::design_tool
