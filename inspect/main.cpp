#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <locale>
#include <string>

#include <unistd.h>

#include "command_line.h"
#include "inspector.h"
#include "rehearse/working_copy.h"

namespace {

constexpr int NOT_WRITTEN = 3;

/// A reader that has seen enough ends this process quietly, with no word from it.
int write(const vestra::inspect::Answer& answer) {
  std::cerr << answer.complaint << std::flush;
  errno = 0;
  std::cout << answer.output << std::flush;
  if (std::cout) {
    return answer.exitStatus;
  }
  std::cerr << "vestra-inspect: the output cannot be written: " << std::strerror(errno) << std::endl;
  return NOT_WRITTEN;
}

}  // namespace

int main(int count, char** words) {
  using namespace vestra::inspect;
  // The main design tool's part in a rehearsal that did not intercept the report:
  // intercepted RECORD -mode batch -source SCRIPT -notrace
  if (count > 6 && std::strcmp(words[1], "intercepted") == 0) {
    keepLeak(words[2], words[6]);
    return 0;
  }
  const CommandLine line = readCommandLine(count, words);
  if (line.exitStatus) {
    return write({*line.exitStatus, line.output, line.complaint});
  }
  return write(answer(line.request, isatty(STDOUT_FILENO) == 1));
}
