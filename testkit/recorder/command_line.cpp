#include "recorder/command_line.h"

namespace vestra::testkit {
namespace {

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// The text without its end; nothing when it ends otherwise.
std::optional<std::string> without(const std::string& end, const std::string& text) {
  return endsWith(text, end) ? std::optional(text.substr(0, text.size() - end.size())) : std::nullopt;
}

/// The script's path, which stands last in the text.
std::optional<std::string> scriptAtEndOf(const std::string& text) {
  const std::string source = " -mode batch -source ";
  const std::size_t begin = text.find(source);
  return begin == std::string::npos ? std::nullopt : std::optional(text.substr(begin + source.size()));
}

std::optional<ToolCommandLine> simulators(const std::string& commandLine) {
  const auto begin = without(" -notrace ", commandLine);
  const auto script = scriptAtEndOf(begin.value_or(""));
  return script && endsWith(*script, "/vestra/kelvo_vestra.tcl") ? std::optional(ToolCommandLine{*script, ""})
                                                                 : std::nullopt;
}

std::optional<ToolCommandLine> labTools(const std::string& commandLine) {
  const auto beforeEnd = without("/vestra/tavlo_vestra.log 2>&1", commandLine);
  if (!beforeEnd) {
    return std::nullopt;
  }
  // The directory stands there twice, so what precedes its second mention ends with the
  // first.
  const std::string middle = "/vestra/tavlo_vestra.tcl -notrace  > ";
  const std::size_t at = beforeEnd->rfind(middle);
  if (at == std::string::npos) {
    return std::nullopt;
  }
  const std::string directory = beforeEnd->substr(at + middle.size());
  const auto script = scriptAtEndOf(beforeEnd->substr(0, at));
  return script == directory ? std::optional(ToolCommandLine{directory + "/vestra/tavlo_vestra.tcl",
                                                             directory + "/vestra/tavlo_vestra.log"})
                             : std::nullopt;
}

}  // namespace

std::optional<ToolCommandLine> toolCommandLine(const std::string& commandLine) {
  const auto simulator = simulators(commandLine);
  return simulator ? simulator : labTools(commandLine);
}

std::string rulesFileBeside(const std::string& script) {
  const std::size_t name = script.rfind('/') + 1;
  const std::string product = script.substr(name, script.find('_', name) - name);
  return script.substr(0, name) + "usage_statistics_ext_" + product + ".wdm";
}

}  // namespace vestra::testkit
