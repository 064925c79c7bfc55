#include "shell_recorder.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>

#include "bytes.h"

namespace vestra::testkit {
namespace {

// Empty while nothing is recorded. Never destroyed: a host may call `system` as late
// as from a static destructor.
std::string& recordDirectory() {
  static auto* directory = new std::string;
  return *directory;
}

std::string textBetween(const std::string& text, const std::string& before, const std::string& after) {
  const std::size_t begin = text.find(before);
  if (begin == std::string::npos) {
    return {};
  }
  const std::size_t from = begin + before.size();
  const std::size_t to = text.find(after, from);
  return to == std::string::npos ? std::string() : text.substr(from, to - from);
}

std::string sizeOf(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 ? std::to_string(status.st_size) : "0";
}

void writePrintedSizes(const std::string& path) {
  writeBytes(path, sizeOf(STDOUT_FILENO) + "\n" + sizeOf(STDERR_FILENO) + "\n");
}

void copyIfThere(const std::string& from, const std::string& to) {
  if (const auto bytes = bytesOf(from)) {
    writeBytes(to, *bytes);
  }
}

// The processes of one run may start tools at the same time: who makes the
// directory has the number.
std::string makeDirectoryForTool() {
  for (int number = 1;; ++number) {
    const std::string directory = recordDirectory() + "/tool-" + std::to_string(number);
    if (mkdir(directory.c_str(), 0700) == 0) {
      return directory;
    }
    if (errno != EEXIST) {
      return {};
    }
  }
}

int runRecorded(const char* command, int (*run)(const char*)) {
  const std::string directory = makeDirectoryForTool();
  const std::string script = textBetween(command, " -source ", " -notrace ");
  writeBytes(directory + "/command", command);
  copyIfThere(script, directory + "/script");
  copyIfThere(rulesFileBeside(script), directory + "/rules");
  std::fflush(nullptr);
  writePrintedSizes(directory + "/printed-before");
  const int status = run(command);
  writePrintedSizes(directory + "/printed-after");
  copyIfThere(textBetween(command, " > ", " 2>&1"), directory + "/log");
  writeBytes(directory + "/status", std::to_string(status));
  return status;
}

/// The number on a line of a file, or another one where there is none.
std::size_t numberIn(const std::string& path, std::size_t line, std::size_t otherwise) {
  const auto lines = linesOf(bytesOf(path).value_or(""));
  std::size_t number = otherwise;
  if (line < lines.size()) {
    std::from_chars(lines[line].data(), lines[line].data() + lines[line].size(), number);
  }
  return number;
}

/// Divides one stream: gives what was printed while the command ran, and adds what
/// stands before that to `own`. `position` is where the last division ended.
std::string takeToolsPart(const std::string& printed, const std::string& directory, std::size_t stream,
                          std::size_t& position, std::string& own) {
  const std::size_t begin = numberIn(directory + "/printed-before", stream, printed.size());
  const std::size_t end = numberIn(directory + "/printed-after", stream, printed.size());
  own += printed.substr(position, begin - position);
  position = end;
  return printed.substr(begin, end - begin);
}

}  // namespace

void recordShellIn(const std::string& directory) { recordDirectory() = directory; }

ShellRecord shellRecordIn(const std::string& directory, const std::string& output,
                          const std::string& errorOutput) {
  ShellRecord record;
  std::size_t outPosition = 0;
  std::size_t errorPosition = 0;
  for (int number = 1;; ++number) {
    const std::string tool = directory + "/tool-" + std::to_string(number);
    const auto command = bytesOf(tool + "/command");
    if (!command) {
      break;
    }
    ToolRun run;
    run.commandLine = *command;
    if (const auto status = bytesOf(tool + "/status")) {
      run.status = std::stoi(*status);
    }
    run.output = takeToolsPart(output, tool, 0, outPosition, record.output);
    run.output += takeToolsPart(errorOutput, tool, 1, errorPosition, record.errorOutput);
    run.output += bytesOf(tool + "/log").value_or("");
    run.script = bytesOf(tool + "/script").value_or("");
    run.rulesFile = bytesOf(tool + "/rules").value_or("");
    record.toolRuns.push_back(run);
  }
  record.output += output.substr(outPosition);
  record.errorOutput += errorOutput.substr(errorPosition);
  return record;
}

std::string rulesFileBeside(const std::string& script) {
  const std::size_t name = script.rfind('/') + 1;
  const std::string product = script.substr(name, script.find('_', name) - name);
  return script.substr(0, name) + "usage_statistics_ext_" + product + ".wdm";
}

}  // namespace vestra::testkit

// Stands before the C library's own for everything in the process.
extern "C" VESTRA_TESTKIT_EXPORT int system(const char* command) {
  using namespace vestra::testkit;
  using System = int (*)(const char*);
  static const auto next = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
  return command == nullptr || recordDirectory().empty() ? next(command) : runRecorded(command, next);
}
