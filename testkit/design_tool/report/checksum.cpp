#include "design_tool/report/checksum.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "design_tool/report/crc32.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;
using reading::WrittenItem;

namespace {

constexpr std::time_t HOUR = 3600;
constexpr int FIRST_YEAR = 1970;
constexpr std::size_t MOST_ADDED = 16;
constexpr std::size_t MOST_EXAMINED = 10'000;

/// One contribution to the checksum: a registration, or an item.
struct Segment {
  std::size_t line;
  std::string text;
  /// Position among the written items; nothing for a registration.
  std::optional<std::size_t> item;
};

using Segments = std::vector<Segment>;

std::string segmentOf(const WrittenItem& item) { return item.key + item.value + item.client + item.context; }

Segments registrationsOf(const Report& report) {
  Segments segments;
  for (const Registration& registration : report.registrations) {
    segments.push_back({registration.line, registration.client, std::nullopt});
  }
  return segments;
}

Segments inOrder(Segments segments) {
  std::stable_sort(segments.begin(), segments.end(),
                   [](const Segment& a, const Segment& b) { return a.line < b.line; });
  return segments;
}

Segments segmentsAsWritten(const Report& report, const std::vector<WrittenItem>& items) {
  Segments segments = registrationsOf(report);
  for (std::size_t i = 0; i < items.size(); ++i) {
    segments.push_back({items[i].line, segmentOf(items[i]), i});
  }
  return inOrder(std::move(segments));
}

Segments segmentsAsRead(const Report& report) {
  Segments segments = registrationsOf(report);
  for (const Item& item : report.items) {
    const Section& section = report.sections[item.section];
    segments.push_back({item.line, item.key + item.value + section.client + section.context, std::nullopt});
  }
  return inOrder(std::move(segments));
}

bool holdsNul(const Segment& segment) { return segment.text.find('\0') != std::string::npos; }

/// The library's checksum ends at the first NUL.
std::string textOf(const Segments& segments) {
  std::string text;
  for (const Segment& segment : segments) {
    text += segment.text;
  }
  return text.substr(0, text.find('\0'));
}

std::string formatted(std::time_t time, const char* format) {
  struct tm local = {};
  char text[32] = "";
  ::localtime_r(&time, &local);
  return {text, std::strftime(text, sizeof text, format, &local)};
}

Crc32 stateAt(std::time_t time) { return Crc32().after(formatted(time, "%j%Y%H")); }

std::vector<Crc32> statesAround(std::time_t time) {
  return {stateAt(time), stateAt(time - HOUR), stateAt(time + HOUR)};
}

/// By the hours' names, whatever the time zone was.
bool isStateOfAnHour(const Crc32& state, std::time_t written) {
  const int lastYear = std::stoi(formatted(written, "%Y")) + 1;
  for (int year = FIRST_YEAR; year <= lastYear; ++year) {
    for (int day = 1; day <= 366; ++day) {
      const Crc32 ofDay = Crc32().after(fmt::format("{:03}{:04}", day, year));
      for (int hour = 0; hour < 24; ++hour) {
        const char digits[] = {static_cast<char>('0' + hour / 10), static_cast<char>('0' + hour % 10)};
        if (ofDay.after({digits, sizeof digits}) == state) {
          return true;
        }
      }
    }
  }
  return false;
}

bool agrees(const Segments& segments, std::uint32_t number, std::time_t written) {
  const Crc32 begin = Crc32::endingIn(number).before(textOf(segments));
  const std::vector<Crc32> near = statesAround(written);
  return std::find(near.begin(), near.end(), begin) != near.end() || isStateOfAnHour(begin, written);
}

/// The items' texts as one value holds them: all between the first one's value and the end of the last one's.
std::string mergedSegment(const std::vector<WrittenItem>& items, std::size_t first, std::size_t last) {
  WrittenItem merged = items[first];
  for (std::size_t i = first; i < last; ++i) {
    const std::string line = scriptLineOf(items[i]);
    const std::size_t value = line.find(" -value \"") + 9 + items[i].value.size();
    merged.value += line.substr(value) + scriptLineOf(items[i + 1]);
    merged.value.resize(merged.value.rfind("\" -context \""));
  }
  merged.context = items[last].context;
  return segmentOf(merged);
}

/// The state that must come before each segment, and at the end the state behind the last.
std::vector<Crc32> statesBefore(const Segments& segments, std::uint32_t number) {
  std::vector<Crc32> states{Crc32::endingIn(number)};
  for (auto segment = segments.rbegin(); segment != segments.rend(); ++segment) {
    states.push_back(states.back().before(segment->text));
  }
  std::reverse(states.begin(), states.end());
  return states;
}

std::string counted(std::size_t items) { return items == 1 ? "item" : fmt::format("{} items", items); }

std::optional<Warning> addedFrom(std::size_t first, const Segments& segments,
                                 const std::vector<WrittenItem>& items, const std::vector<Crc32>& wanted,
                                 const std::vector<Crc32>& reached) {
  for (std::size_t last = first + 1; last < std::min(segments.size(), first + MOST_ADDED); ++last) {
    if (!segments[first].item || !segments[last].item) {
      return std::nullopt;
    }
    const std::string merged = mergedSegment(items, *segments[first].item, *segments[last].item);
    for (const Crc32& state : reached) {
      if (state.after(merged) == wanted[last + 1]) {
        const WrittenItem& item = items[*segments[first].item];
        return Warning{item.line, fmt::format("the value of key {} has added the next {}: -clientid is the "
                                              "checksum of a report in which they are part of it",
                                              inQuotes(item.key), counted(last - first))};
      }
    }
  }
  return std::nullopt;
}

std::optional<Warning> addedItems(const Segments& segments, const std::vector<WrittenItem>& items,
                                  std::uint32_t number, std::time_t written) {
  if (items.size() > MOST_EXAMINED || std::any_of(segments.begin(), segments.end(), holdsNul)) {
    return std::nullopt;
  }
  const std::vector<Crc32> wanted = statesBefore(segments, number);
  std::vector<Crc32> reached = statesAround(written);
  for (std::size_t first = 0; first < segments.size(); ++first) {
    if (auto warning = addedFrom(first, segments, items, wanted, reached)) {
      return warning;
    }
    for (Crc32& state : reached) {
      state = state.after(segments[first].text);
    }
  }
  return std::nullopt;
}

Warning disagreement(const Report& report, const Segments& segments, std::time_t written) {
  const Transmission& transmission = report.transmission;
  return {
      transmission.line,
      fmt::format("-clientid {} is not the checksum of what is reported: {} is expected of a script of {}",
                  transmission.clientId, stateAt(written).after(textOf(segments)).checksum(),
                  formatted(written, "%Y-%m-%d %H:00"))};
}

}  // namespace

std::vector<Warning> checksumWarnings(const Report& report, std::string_view script, std::time_t written) {
  const std::vector<WrittenItem> items = reading::itemsWrittenIn(script);
  std::vector<Warning> warnings = injectedItems(report, items);
  const std::uint32_t number = report.transmission.clientId;
  const Segments asWritten = segmentsAsWritten(report, items);
  const Segments asRead = segmentsAsRead(report);
  if (agrees(asWritten, number, written) || agrees(asRead, number, written)) {
    return warnings;
  }
  const std::optional<Warning> added = addedItems(asWritten, items, number, written);
  warnings.push_back(added ? *added : disagreement(report, items.empty() ? asRead : asWritten, written));
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
                                                 inQuotes(item.key), end - read - 1)});
    }
    read = end;
  }
  return warnings;
}

}  // namespace vestra::design_tool
