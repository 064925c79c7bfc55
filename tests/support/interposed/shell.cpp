#include "support/interposed/shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace vestra_test {
namespace {

struct Recording {
  int status = 0;
  std::function<void()> look = [] {};
  std::vector<std::string> lines;
};

Recording recording;
bool isRecording = false;

int askRealShell(const char* line) {
  std::string shell = "sh";
  std::string option = "-c";
  std::string command = line;
  const std::array<char*, 4> arguments{shell.data(), option.data(), command.data(), nullptr};
  pid_t child = 0;
  int status = -1;
  if (posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments.data(), environ) == 0) {
    waitpid(child, &status, 0);
  }
  return status;
}

int take(const char* line) {
  recording.lines.emplace_back(line);
  recording.look();
  return recording.status;
}

}  // namespace

RecordingShell::RecordingShell(int status) {
  recording = {};
  recording.status = status;
  isRecording = true;
}

RecordingShell::~RecordingShell() { isRecording = false; }

void RecordingShell::whileRunning(std::function<void()> look) { recording.look = std::move(look); }

const std::vector<std::string>& RecordingShell::commandLines() const { return recording.lines; }

}  // namespace vestra_test

// The C library's names of parameters are reserved.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int system(const char* line) {
  return vestra_test::isRecording ? vestra_test::take(line) : vestra_test::askRealShell(line);
}
