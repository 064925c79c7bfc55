#include "sandbox/results/shell_record.h"

#include <algorithm>
#include <utility>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "recorder/command_line.h"
#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

using Fields = std::vector<std::string>;

/// One stream, divided into what the host and what its design tools have printed.
class Printed {
 public:
  explicit Printed(const std::string& theText) : text(theText) {}

  /// What was printed while one command ran, but for what another has taken.
  ///
  /// @param begin  how much had been printed before
  /// @param end    and how much at its end
  std::string takeToolsPart(std::size_t begin, std::size_t end) {
    begin = std::max(begin, position);
    end = std::max(begin, end);
    own += text.substr(position, begin - position);
    position = end;
    return text.substr(begin, end - begin);
  }

  std::string hostsPart() const { return own + text.substr(position); }

 private:
  const std::string& text;
  std::size_t position = 0;
  std::string own;
};

/// One command that the shell was given.
struct ShellCommand {
  std::string number;
  std::string commandLine;
  std::string script;
  std::string rulesFile;
  std::size_t outBegin = 0;
  std::size_t errBegin = 0;
  // Of one that had no end: what was printed until the host's.
  std::optional<int> status = std::nullopt;
  std::string log = {};
  std::size_t outEnd = std::string::npos;
  std::size_t errEnd = std::string::npos;
};

ShellCommand begunCommand(Fields::iterator field) {
  return {field[1], field[2], field[3], field[4], std::stoul(field[5]), std::stoul(field[6])};
}

void endCommand(std::vector<ShellCommand>& commands, Fields::iterator field) {
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const ShellCommand& each) { return each.number == field[1]; });
  if (command != commands.end()) {
    command->status = std::stoi(field[2]);
    command->log = field[3];
    command->outEnd = std::stoul(field[4]);
    command->errEnd = std::stoul(field[5]);
  }
}

std::vector<ShellCommand> commandsIn(const std::string& directory) {
  constexpr std::ptrdiff_t BEGUN_FIELDS = 7;
  constexpr std::ptrdiff_t ENDED_FIELDS = 6;
  Fields fields = intercept::fieldsIn(bytesOf(directory + "/" + SHELL_RECORD).value_or(""));
  std::vector<ShellCommand> commands;
  for (auto field = fields.begin(); fields.end() - field >= ENDED_FIELDS;) {
    const bool isBegun = *field == BEGUN;
    if (!isBegun) {
      endCommand(commands, field);
    } else if (fields.end() - field >= BEGUN_FIELDS) {
      commands.push_back(begunCommand(field));
    }
    field += std::min(isBegun ? BEGUN_FIELDS : ENDED_FIELDS, fields.end() - field);
  }
  return commands;
}

ToolRun toolRunFrom(const ShellCommand& command, Printed& out, Printed& err) {
  return {command.commandLine, command.status,
          out.takeToolsPart(command.outBegin, command.outEnd) +
              err.takeToolsPart(command.errBegin, command.errEnd) + command.log,
          command.script, command.rulesFile};
}

}  // namespace

ShellRecord shellRecordIn(const std::string& directory, const std::string& output,
                          const std::string& errorOutput) {
  ShellRecord record;
  Printed out(output);
  Printed err(errorOutput);
  for (ShellCommand& command : commandsIn(directory)) {
    if (toolCommandLine(command.commandLine)) {
      command.outEnd = std::min(command.outEnd, output.size());
      command.errEnd = std::min(command.errEnd, errorOutput.size());
      record.toolRuns.push_back(toolRunFrom(command, out, err));
    } else {
      record.hostCommands.push_back({command.commandLine, command.status});
    }
  }
  record.output = out.hostsPart();
  record.errorOutput = err.hostsPart();
  return record;
}

}  // namespace vestra::testkit
