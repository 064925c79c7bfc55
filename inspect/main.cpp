#include <csignal>
#include <cstring>
#include <iostream>
#include <locale>
#include <string>

#include <unistd.h>

#include "command_line.h"
#include "inspector.h"
#include "rehearse/caught.h"

namespace {

/// A reader that has seen enough ends this process quietly, with no word from it.
int write(const vestra::inspect::Answer& answer) {
  std::cout << answer.output << std::flush;
  std::cerr << answer.complaint << std::flush;
  return answer.exitStatus;
}

}  // namespace

int main(int count, char** words) {
  using namespace vestra::inspect;
  // The tool's part in a rehearsal that lost its shim.
  if (count > 2 && std::strcmp(words[1], "caught") == 0) {
    return keepWhatWasCaught(words[2], {words + 3, words + count});
  }
  const CommandLine line = readCommandLine(count, words);
  if (line.exitStatus) {
    return write({*line.exitStatus, line.output, line.complaint});
  }
  return write(answer(line.request, isatty(STDOUT_FILENO) == 1));
}
