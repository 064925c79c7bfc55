// The call that starts a shell stands before the C library's own for everything in the
// process.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include <vestra/testkit/host_run.h>

#include "recorder/bytes.h"
#include "recorder/command_line.h"
#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

std::string sizeOf(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 ? std::to_string(status.st_size) : "0";
}

std::string bytesIfThere(const std::string& path) { return bytesOf(path).value_or(""); }

std::string rulesFor(const ToolCommandLine& tool) {
  return tool.script.empty() ? "" : bytesIfThere(rulesFileBeside(tool.script));
}

// The design tool takes the script's time for the hour that the report's number is made of.
void holdTimeOf(const std::string& script) {
  if (const auto now = heldClock()) {
    const timespec held{*now, 0};
    const std::array<timespec, 2> times{held, held};
    utimensat(AT_FDCWD, script.c_str(), times.data(), 0);
  }
}

using System = int (*)(const char*);

int runRecorded(const char* command, System run) {
  const std::string number = nextNumber();
  const ToolCommandLine tool = toolCommandLine(command).value_or(ToolCommandLine());
  holdTimeOf(tool.script);
  std::fflush(nullptr);
  note(SHELL_RECORD, {BEGUN, number, command, bytesIfThere(tool.script), rulesFor(tool),
                      sizeOf(STDOUT_FILENO), sizeOf(STDERR_FILENO)});
  const int status = run(command);
  note(SHELL_RECORD, {ENDED, number, std::to_string(status), bytesIfThere(tool.log), sizeOf(STDOUT_FILENO),
                      sizeOf(STDERR_FILENO)});
  return status;
}

}  // namespace
}  // namespace vestra::testkit

extern "C" VESTRA_TESTKIT_EXPORT int system(const char* command) {
  using namespace vestra::testkit;
  static const auto next = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
  return command == nullptr || recordDirectory().empty() ? next(command) : runRecorded(command, next);
}
