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
int leave(int status) {
  errno = 0;
  std::cout << std::flush;
  if (std::cout) {
    return status;
  }
  std::cerr << "vestra-inspect: the output cannot be written: " << std::strerror(errno != 0 ? errno : ENOSPC)
            << std::endl;
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
  std::ios::sync_with_stdio(false);
  const CommandLine line = readCommandLine(count, words);
  if (line.exitStatus) {
    std::cerr << line.complaint;
    std::cout << line.output;
    return leave(*line.exitStatus);
  }
  return leave(answer(line.request, isatty(STDOUT_FILENO) == 1, std::cout, std::cerr));
}
