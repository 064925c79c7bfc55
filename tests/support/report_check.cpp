#include "support/report_check.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include "support/files.h"

namespace vestra_test {
namespace {

constexpr std::time_t AN_HOUR = 3600;

bool beginsWith(const std::string& text, const std::string& beginning) {
  return text.rfind(beginning, 0) == 0;
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// What stands between two texts; empty where one is lacking.
std::string between(const std::string& line, const std::string& before, const std::string& after) {
  const std::size_t found = line.find(before);
  const std::size_t begin = found + before.size();
  const std::size_t end = found == std::string::npos ? found : line.find(after, begin);
  return end == std::string::npos ? "" : line.substr(begin, end - begin);
}

bool isRegistration(const std::string& line) { return beginsWith(line, "vestra_register_client -client "); }

bool isItem(const std::string& line) {
  return beginsWith(line, "vestra_add_data -client ") && endsWith(line, "\"") &&
         line.find(" -key ") != std::string::npos && line.find(" -value \"") != std::string::npos &&
         line.find("\" -context \"") != std::string::npos;
}

std::string keyOf(const std::string& item) { return between(item, " -key ", " -value "); }

std::string valueOfItem(const std::string& item) { return between(item, " -value \"", "\" -context "); }

/// The context as the interpreter reads it: two backslashes are one.
std::string contextOf(const std::string& item) {
  std::string context = between(item, "\" -context \"", "\"");
  const std::size_t pair = context.find("\\\\");
  return pair == std::string::npos ? context : context.erase(pair, 1);
}

std::string segmentOf(const std::string& line) {
  if (isRegistration(line)) {
    return line.substr(line.rfind(' ') + 1);
  }
  return keyOf(line) + valueOfItem(line) + between(line, " -client ", " ") + contextOf(line);
}

std::string timeStamp(std::time_t moment) {
  std::array<char, 16> text{};
  std::strftime(text.data(), text.size(), "%j%Y%H", std::localtime(&moment));
  return text.data();
}

/// The first line, then registrations and items, then two lines more.
bool isComplete(const std::string& script, const std::vector<std::string>& lines) {
  return lines.size() > 3 && endsWith(script, "\n") && beginsWith(lines[0], "vestra_init -vestra_dir ") &&
         std::all_of(lines.begin() + 1, lines.end() - 2,
                     [](const std::string& line) { return isRegistration(line) || isItem(line); }) &&
         beginsWith(lines.end()[-2], "vestra_transmit -clientid ") &&
         endsWith(lines.end()[-2], " Usage Report</H3><BR>\"") && lines.back() == "vestra_terminate";
}

std::multiset<std::string> marksOf(const std::vector<std::string>& lines) {
  std::multiset<std::string> marks;
  for (const std::string& line : lines) {
    if (isItem(line) && keyOf(line) == MARK) {
      marks.insert(valueOfItem(line));
    }
  }
  return marks;
}

}  // namespace

std::uint32_t zlibCrc32(const std::string& bytes) {
  return static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

std::string faultOf(const std::string& script, std::time_t now) {
  if (script.empty()) {
    return "empty";
  }
  const std::vector<std::string> lines = linesIn(script);
  const std::multiset<std::string> marks = marksOf(lines);
  if (!isComplete(script, lines) || marks.size() != MARKS_OF_A_HOST) {
    return "torn";
  }
  if (marks.count(*marks.begin()) != marks.size()) {
    return "mixed";
  }
  return isChecksumRight(script, now) ? "" : "checksum";
}

bool isChecksumRight(const std::string& script, std::time_t now) {
  const std::vector<std::string> lines = linesIn(script);
  std::string segments;
  std::for_each(lines.begin() + 1, lines.end() - 2,
                [&](const std::string& line) { segments += segmentOf(line); });
  const std::string found = between(lines.end()[-2], " -clientid ", " ");
  return found == std::to_string(zlibCrc32(timeStamp(now) + segments)) ||
         found == std::to_string(zlibCrc32(timeStamp(now - AN_HOUR) + segments));
}

std::string valueOf(const std::string& script, const std::string& key) {
  return between(script, " -key " + key + " -value \"", "\" -context ");
}

}  // namespace vestra_test
