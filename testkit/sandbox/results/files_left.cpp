#include "sandbox/results/files_left.h"

#include <algorithm>
#include <charconv>

#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

constexpr std::size_t PROJECT_LINE = 4;

template <typename Number>
std::optional<Number> numberIn(const std::vector<std::string>& lines, std::size_t index) {
  Number number{};
  if (index >= lines.size()) {
    return std::nullopt;
  }
  const std::string& line = lines[index];
  const auto result = std::from_chars(line.data(), line.data() + line.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + "\n";
  }
  return text;
}

std::string trimmed(const std::string& line) {
  const char* const blanks = " \t\v\f\r";
  const std::size_t begin = line.find_first_not_of(blanks);
  return begin == std::string::npos ? "" : line.substr(begin, line.find_last_not_of(blanks) + 1 - begin);
}

}  // namespace

Settings parseSettings(const std::string& text) {
  const std::string beginning = "RandomID=";
  for (const std::string& each : linesOf(text)) {
    const std::string line = trimmed(each);
    if (line.rfind(beginning, 0) == 0 && std::count(line.begin(), line.end(), '=') == 1) {
      return {text, line.substr(beginning.size())};
    }
  }
  return {text, ""};
}

Identity parseIdentity(const std::string& text) {
  const std::vector<std::string> lines = linesOf(text);
  Identity identity;
  identity.text = text;
  identity.lastSendTimeDefault = numberIn<std::int64_t>(lines, 0);
  identity.lastSendTimeType1 = numberIn<std::int64_t>(lines, 1);
  identity.iteration = numberIn<std::uint64_t>(lines, 2);
  if (const auto flow = numberIn<int>(lines, 3)) {
    identity.orbeloFlow = *flow != 0;
  }
  if (lines.size() > PROJECT_LINE) {
    identity.projectId = lines[PROJECT_LINE];
  }
  return identity;
}

std::string agedIdentity(const std::string& text, std::int64_t seconds) {
  std::vector<std::string> lines = linesOf(text);
  for (std::size_t slot = 0; slot < 2; ++slot) {
    const auto time = numberIn<std::int64_t>(lines, slot);
    if (time.value_or(0) != 0) {
      lines[slot] = std::to_string(*time - seconds);
    }
  }
  return joined(lines);
}

std::string identityWithProject(const std::string& text, const std::string& project) {
  std::vector<std::string> lines = linesOf(text);
  lines.resize(PROJECT_LINE);
  lines.push_back(project);
  return joined(lines);
}

}  // namespace vestra::testkit
