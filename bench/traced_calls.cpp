#include "traced_calls.h"

#include <fstream>
#include <stdexcept>
#include <string>

#include "support/temporary_directory.h"

namespace vestra_bench {
namespace {

bool isMark(const std::string& line) {
  return line.find("kill(") != std::string::npos && line.find(", 0)") != std::string::npos;
}

bool isCall(const std::string& line) {
  return line.find("+++") == std::string::npos && line.find("---") == std::string::npos;
}

}  // namespace

int countCallsBetweenMarks(const Command& command) {
  const vestra_test::TemporaryDirectory directory;
  const std::string list = directory / "calls";
  Command traced{"strace", "-f", "-o", list};
  traced.insert(traced.end(), command.begin(), command.end());
  outputOf(traced);
  std::ifstream in(list);
  int marks = 0;
  int calls = 0;
  for (std::string line; marks < 2 && std::getline(in, line);) {
    if (isMark(line)) {
      ++marks;
    } else if (marks == 1 && isCall(line)) {
      ++calls;
    }
  }
  if (marks == 0) {
    throw std::runtime_error(command[0] + " makes no mark");
  }
  return calls;
}

}  // namespace vestra_bench
