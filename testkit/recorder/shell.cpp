// The call that starts a shell stands before the C library's own for everything in the
// process.

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

void writePrintedSizes(const std::string& path) {
  writeBytes(path, sizeOf(STDOUT_FILENO) + "\n" + sizeOf(STDERR_FILENO) + "\n");
}

void copyIfThere(const std::string& from, const std::string& to) {
  if (const auto bytes = bytesOf(from)) {
    writeBytes(to, *bytes);
  }
}

// The processes of one run may start commands at the same time: the one that makes the
// directory has the number.
std::string makeDirectoryForCommand() {
  for (int number = 1;; ++number) {
    const std::string directory = recordDirectory() + "/shell-" + std::to_string(number);
    if (mkdir(directory.c_str(), 0700) == 0) {
      return directory;
    }
    if (errno != EEXIST) {
      return {};
    }
  }
}

using System = int (*)(const char*);

int runRecorded(const char* command, System run) {
  const std::string directory = makeDirectoryForCommand();
  const auto tool = toolCommandLine(command);
  writeBytes(directory + "/command", command);
  if (tool) {
    copyIfThere(tool->script, directory + "/script");
    copyIfThere(rulesFileBeside(tool->script), directory + "/rules");
  }
  std::fflush(nullptr);
  writePrintedSizes(directory + "/printed-before");
  const int status = run(command);
  writePrintedSizes(directory + "/printed-after");
  if (tool) {
    copyIfThere(tool->log, directory + "/log");
  }
  writeBytes(directory + "/status", std::to_string(status));
  return status;
}

}  // namespace
}  // namespace vestra::testkit

extern "C" VESTRA_TESTKIT_EXPORT int system(const char* command) {
  using namespace vestra::testkit;
  static const auto next = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
  return command == nullptr || recordDirectory().empty() ? next(command) : runRecorded(command, next);
}
