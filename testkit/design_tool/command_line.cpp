#include "design_tool/command_line.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {
namespace {

using reading::inQuotes;
using Values = std::map<std::string, std::string>;

constexpr const char* USAGE =
    "Usage: vestra-design-tool -mode batch -source FILE [-notrace]\n"
    "       vestra-design-tool --show FILE | --json FILE\n";

constexpr const char* HELP = R"(
Stands in for the main design tool while you develop a host: runs the report
script FILE, checks that it says what it should, and writes the XML and HTML
reports it asks for. Nothing is transmitted.

  -mode batch      the only mode there is
  -source FILE     the report script
  -notrace         accepted; commands are never echoed
  --show FILE      print what the script FILE reports, and write nothing
  --json FILE      print the report.json of the script FILE, and write nothing
  --help           print this and exit
  --version        print the version and exit

Environment:
  VESTRA_OUTBOX    a directory: keep a copy of each report in a folder of its own in it

Exit status: 0 when the reports were written, 1 when the script, its rules or
a file is at fault, 2 when the command line is invalid.
)";

Values valuesIn(const std::vector<std::string>& arguments) {
  Values values;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const std::string& option = *argument;
    if (option == "-notrace") {
      continue;
    }
    if (option != "-mode" && option != "-source") {
      throw UsageError(fmt::format("unexpected argument {}", inQuotes(option)));
    }
    if (++argument == arguments.end()) {
      throw UsageError(option + " needs a value");
    }
    if (!values.emplace(option, *argument).second) {
      throw UsageError(option + " is given twice");
    }
  }
  return values;
}

const std::string& valueOf(const Values& values, const std::string& option) {
  const auto value = values.find(option);
  if (value == values.end()) {
    throw UsageError(option + " is missing");
  }
  return value->second;
}

}  // namespace

Request readCommandLine(const std::vector<std::string>& arguments) {
  for (const auto& [option, action] : {std::pair("--help", Action::Help), {"--version", Action::Version}}) {
    if (std::find(arguments.begin(), arguments.end(), option) != arguments.end()) {
      return {action};
    }
  }
  for (const auto& [option, action] : {std::pair("--show", Action::Show), {"--json", Action::PrintRecord}}) {
    if (arguments.size() == 2 && arguments[0] == option) {
      return {action, arguments[1]};
    }
  }
  const Values values = valuesIn(arguments);
  if (valueOf(values, "-mode") != "batch") {
    throw UsageError(fmt::format("there is no mode {}, only \"batch\"", inQuotes(values.at("-mode"))));
  }
  return {Action::Run, valueOf(values, "-source")};
}

std::string helpText() { return std::string(USAGE) + HELP; }

std::string versionText() {
  return "vestra-design-tool " VESTRA_VERSION ", a stand-in for the main design tool\n";
}

std::string usageText(const UsageError& error) {
  return fmt::format("vestra-design-tool: {}\n{}Try --help.\n", error.what(), USAGE);
}

}  // namespace vestra::design_tool
