#include "sandbox/shell_record.h"

#include <charconv>

#include "recorder/bytes.h"
#include "recorder/command_line.h"

namespace vestra::testkit {
namespace {

/// The number on a line of a file, or another one where there is none.
std::size_t numberIn(const std::string& path, std::size_t line, std::size_t otherwise) {
  const auto lines = linesOf(bytesOf(path).value_or(""));
  std::size_t number = otherwise;
  if (line < lines.size()) {
    std::from_chars(lines[line].data(), lines[line].data() + lines[line].size(), number);
  }
  return number;
}

/// One stream, divided into what the host and what its design tools have printed.
class Printed {
 public:
  /// @param theText     all that was printed
  /// @param lineInSize  where the files with sizes hold this stream's
  Printed(const std::string& theText, std::size_t lineInSize) : text(theText), line(lineInSize) {}

  /// What was printed while one command ran.
  std::string takeToolsPart(const std::string& directory) {
    const std::size_t begin = numberIn(directory + "/printed-before", line, text.size());
    const std::size_t end = numberIn(directory + "/printed-after", line, text.size());
    own += text.substr(position, begin - position);
    position = end;
    return text.substr(begin, end - begin);
  }

  std::string hostsPart() const { return own + text.substr(position); }

 private:
  const std::string& text;
  std::size_t line;
  std::size_t position = 0;
  std::string own;
};

std::optional<int> statusIn(const std::string& directory) {
  const auto status = bytesOf(directory + "/status");
  return status ? std::optional(std::stoi(*status)) : std::nullopt;
}

ToolRun toolRunIn(const std::string& directory, const std::string& commandLine, Printed& out, Printed& err) {
  ToolRun run;
  run.commandLine = commandLine;
  run.status = statusIn(directory);
  run.output = out.takeToolsPart(directory) + err.takeToolsPart(directory);
  run.output += bytesOf(directory + "/log").value_or("");
  run.script = bytesOf(directory + "/script").value_or("");
  run.rulesFile = bytesOf(directory + "/rules").value_or("");
  return run;
}

}  // namespace

ShellRecord shellRecordIn(const std::string& directory, const std::string& output,
                          const std::string& errorOutput) {
  ShellRecord record;
  Printed out(output, 0);
  Printed err(errorOutput, 1);
  for (int number = 1;; ++number) {
    const std::string shell = directory + "/shell-" + std::to_string(number);
    const auto command = bytesOf(shell + "/command");
    if (!command) {
      break;
    }
    if (toolCommandLine(*command)) {
      record.toolRuns.push_back(toolRunIn(shell, *command, out, err));
    } else {
      record.hostCommands.push_back({*command, statusIn(shell)});
    }
  }
  record.output = out.hostsPart();
  record.errorOutput = err.hostsPart();
  return record;
}

}  // namespace vestra::testkit
