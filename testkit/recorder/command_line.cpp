#include "recorder/command_line.h"

#include <cstdio>
#include <cstring>

namespace vestra::testkit {
namespace {

using std::string_view;

// The members of string_view that cut and compare parts can throw, which needs the C++ library.

string_view part(string_view text, std::size_t begin, std::size_t length) {
  return {text.data() + begin, length};
}

bool endsWith(string_view text, string_view end) {
  return text.size() >= end.size() && part(text, text.size() - end.size(), end.size()) == end;
}

/// The text without its end; empty when it ends otherwise.
string_view without(string_view end, string_view text) {
  return endsWith(text, end) ? part(text, 0, text.size() - end.size()) : string_view();
}

/// The script's path, which stands last in the text; empty without one.
string_view scriptAtEndOf(string_view text) {
  constexpr string_view source = " -mode batch -source ";
  const std::size_t found = text.find(source);
  const std::size_t begin = found + source.size();
  return found == string_view::npos ? string_view() : part(text, begin, text.size() - begin);
}

std::optional<ToolCommandLine> simulators(string_view commandLine) {
  const string_view script = scriptAtEndOf(without(" -notrace ", commandLine));
  return endsWith(script, "/vestra/kelvo_vestra.tcl") ? std::optional(ToolCommandLine{script, ""})
                                                      : std::nullopt;
}

std::optional<ToolCommandLine> labTools(string_view commandLine) {
  constexpr string_view SCRIPT = "/vestra/tavlo_vestra.tcl";
  constexpr string_view MIDDLE = "/vestra/tavlo_vestra.tcl -notrace  > ";
  constexpr string_view LOG = "/vestra/tavlo_vestra.log";
  const string_view beforeEnd = without(" 2>&1", commandLine);
  // The directory stands there twice, so what precedes its second mention ends with the first.
  const std::size_t at = beforeEnd.rfind(MIDDLE);
  if (!endsWith(beforeEnd, LOG) || at == string_view::npos) {
    return std::nullopt;
  }
  const std::size_t second = at + MIDDLE.size();
  const string_view log = part(beforeEnd, second, beforeEnd.size() - second);
  const string_view script = scriptAtEndOf(part(beforeEnd, 0, at + SCRIPT.size()));
  const bool isSame = without(SCRIPT, script) == without(LOG, log);
  return isSame && !script.empty() ? std::optional(ToolCommandLine{script, log}) : std::nullopt;
}

}  // namespace

std::optional<ToolCommandLine> toolCommandLine(string_view commandLine) {
  const auto simulator = simulators(commandLine);
  return simulator ? simulator : labTools(commandLine);
}

Path pathFrom(string_view text) {
  Path path;
  if (text.size() < sizeof path.text) {
    std::memcpy(path.text, text.data(), text.size());
  }
  return path;
}

Path rulesFileBeside(string_view script) {
  const std::size_t name = script.rfind('/') + 1;
  const std::size_t product = script.find('_', name);
  Path rules;
  if (product != string_view::npos) {
    std::snprintf(rules.text, sizeof rules.text, "%.*susage_statistics_ext_%.*s.wdm", static_cast<int>(name),
                  script.data(), static_cast<int>(product - name), script.data() + name);
  }
  return rules;
}

}  // namespace vestra::testkit
