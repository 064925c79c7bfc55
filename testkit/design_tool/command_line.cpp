#include "design_tool/command_line.h"

#include <map>
#include <optional>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

constexpr const char* USAGE =
    "Usage: vestra-design-tool -mode batch -source FILE [-notrace] [--outbox DIR]\n"
    "       vestra-design-tool --show FILE\n";

constexpr const char* HELP = R"(
Stands in for the main design tool while you develop a host: runs the report
script FILE, checks that it says what it should, and writes the XML and HTML
reports it asks for. Nothing is transmitted.

  -mode batch      the only mode there is
  -source FILE     the report script
  -notrace         accepted; commands are never echoed
  --outbox DIR     keep a copy of each report in a folder of its own in DIR
  --show FILE      print what the script FILE reports, and write nothing
  --help           print this and exit
  --version        print the version and exit

Environment:
  VESTRA_OUTBOX    the outbox when --outbox is not given

Exit status: 0 when the reports were written, 1 when the script, its rules or
a file is at fault, 2 when the command line is.
)";

struct Arguments {
  std::map<std::string, std::string> values;
  bool wantsHelp = false;
  bool wantsVersion = false;
  std::optional<UsageError> error;
};

bool takesValue(const std::string& argument) {
  return argument == "-mode" || argument == "-source" || argument == "--outbox" || argument == "--show";
}

Arguments sortOut(const std::vector<std::string>& words) {
  Arguments sorted;
  for (std::size_t i = 0; i < words.size() && !sorted.error; ++i) {
    const std::string& word = words[i];
    if (word == "--help") {
      sorted.wantsHelp = true;
    } else if (word == "--version") {
      sorted.wantsVersion = true;
    } else if (word == "-notrace") {
      continue;
    } else if (!takesValue(word)) {
      sorted.error = UsageError{fmt::format("unexpected argument {}", inQuotes(word))};
    } else if (i + 1 == words.size()) {
      sorted.error = UsageError{fmt::format("{} needs a value", word)};
    } else if (!sorted.values.emplace(word, words[i + 1]).second) {
      sorted.error = UsageError{fmt::format("{} is given twice", word)};
    } else {
      ++i;
    }
  }
  return sorted;
}

std::string outboxOf(const Arguments& arguments, const char* defaultOutbox) {
  const auto given = arguments.values.find("--outbox");
  if (given != arguments.values.end()) {
    return given->second;
  }
  return defaultOutbox == nullptr ? "" : defaultOutbox;
}

Request runRequest(const Arguments& arguments, const char* defaultOutbox) {
  const auto mode = arguments.values.find("-mode");
  if (mode == arguments.values.end()) {
    return UsageError{"-mode is missing"};
  }
  if (mode->second != "batch") {
    return UsageError{fmt::format("there is no mode {}, only \"batch\"", inQuotes(mode->second))};
  }
  const auto source = arguments.values.find("-source");
  if (source == arguments.values.end()) {
    return UsageError{"-source is missing"};
  }
  return RunRequest{source->second, outboxOf(arguments, defaultOutbox)};
}

}  // namespace

Request readCommandLine(const std::vector<std::string>& arguments, const char* defaultOutbox) {
  const Arguments sorted = sortOut(arguments);
  if (sorted.wantsHelp) {
    return HelpRequest{};
  }
  if (sorted.wantsVersion) {
    return VersionRequest{};
  }
  if (sorted.error) {
    return *sorted.error;
  }
  const auto shown = sorted.values.find("--show");
  if (shown != sorted.values.end()) {
    return sorted.values.size() == 1 ? Request(ShowRequest{shown->second})
                                     : UsageError{"--show goes with nothing else"};
  }
  return runRequest(sorted, defaultOutbox);
}

std::string helpText() { return std::string(USAGE) + HELP; }

std::string versionText() {
  return "vestra-design-tool " VESTRA_VERSION ", a stand-in for the main design tool\n";
}

std::string usageText(const UsageError& error) {
  return fmt::format("vestra-design-tool: {}\n{}Try --help.\n", error.message, USAGE);
}

}  // namespace vestra::design_tool
