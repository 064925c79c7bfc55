#include "support/scenario/recording_tool.h"

#include <boost/filesystem.hpp>

#include "support/files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

std::vector<std::string> linesOf(const std::string& path) { return linesIn(readFile(path)); }

std::string contentOrNothing(const std::string& path) { return exists(path) ? readFile(path) : ""; }

}  // namespace

RecordingTool::RecordingTool(const std::string& directory, const std::string& vestraDirectory,
                             const std::string& ending)
    : records(directory + "/recorded"), tool(directory + "/recording-tool") {
  fs::create_directories(records);
  fs::permissions(records, fs::all_all);
  writeFile(tool,
            "#!/bin/sh\n"
            "number=1\n"
            "until mkdir '" +
                records +
                "/'$number 2>/dev/null; do number=$((number + 1)); done\n"
                "cd_was=$(pwd)\n"
                "record='" +
                records +
                "/'$number\n"
                "printf '%s\\n' \"$@\" > $record/arguments\n"
                "printf '%s\\n' \"$cd_was\" > $record/directory\n"
                "LC_ALL=C ls -A '" +
                vestraDirectory +
                "' > $record/files\n"
                "cp \"$4\" $record/script 2>/dev/null\n"
                "cp '" +
                vestraDirectory + "'/*.wdm $record/rules 2>/dev/null\n" + ending + "\n");
  fs::permissions(tool, fs::perms(0755));
}

std::vector<Invocation> RecordingTool::invocations() const {
  std::vector<Invocation> all;
  for (int number = 1; exists(records + "/" + std::to_string(number)); ++number) {
    const std::string record = records + "/" + std::to_string(number);
    Invocation invocation;
    invocation.arguments = linesOf(record + "/arguments");
    invocation.workingDirectory = linesOf(record + "/directory").at(0);
    invocation.files = linesOf(record + "/files");
    invocation.script = contentOrNothing(record + "/script");
    invocation.rules = contentOrNothing(record + "/rules");
    all.push_back(invocation);
  }
  return all;
}

}  // namespace vestra_test
