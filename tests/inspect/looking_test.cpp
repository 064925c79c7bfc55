// Looking changes nothing: held by the system calls, and by each file before and after.

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/scenarios.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using testing::SizeIs;

std::vector<std::string> linesHolding(const std::string& text, const std::string& part) {
  std::vector<std::string> lines;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    const std::size_t begin = text.rfind('\n', at) + 1;
    lines.push_back(text.substr(begin, text.find('\n', at) - begin));
  }
  return lines;
}

/// The system calls of a command that tell whether something is started, connected, made or written.
std::string traceOf(const Place& place, const Words& words) {
  Words all = {"strace",
               "-f",
               "-qq",
               "-e",
               "trace=%file,%process,%network,ftruncate,fchmod,fchown,flock",
               "-o",
               place / "temporary/trace",
               place.inspector()};
  all.insert(all.end(), words.begin(), words.end());
  place.runProgram(all);
  return readFile(place / "temporary/trace");
}

/// Calls that a process which only looks has no use for.
std::string writingCallsIn(const std::string& trace) {
  std::string found;
  for (const char* call :
       {"fork(",  "clone(", "clone3(", "vfork(",   "socket(", "connect(", "mkdir",   "unlink",
        "rename", "rmdir(", "link(",   "symlink",  "mknod",   "chmod",    "chown",   "truncate",
        "utime",  "creat(", "flock(",  "O_WRONLY", "O_RDWR",  "O_CREAT",  "O_TRUNC", "O_APPEND"}) {
    for (const std::string& line : linesHolding(trace, call)) {
      // A build that counts lines writes the counts at its end.
      const bool isOurs = line.find("readlink") == std::string::npos &&
                          line.find(".gcda") == std::string::npos &&
                          line.find("CMakeFiles") == std::string::npos;
      found += isOurs ? line + "\n" : "";
    }
  }
  return found;
}

class EachScenario : public testing::TestWithParam<Scenario> {
 protected:
  EachScenario() {
    GetParam().make(place);
    place.giveToUser();
  }

  Place place;
};

TEST_P(EachScenario, IsLookedAtWithoutAChange) {
  const std::string before = place.snapshot();
  for (const char* command : {"status", "report", "doctor"}) {
    const std::string trace = traceOf(place, wordsFor(command, GetParam(), place));
    EXPECT_THAT(linesHolding(trace, "execve("), SizeIs(1)) << command;
    EXPECT_EQ(writingCallsIn(trace), "") << command;
  }
  EXPECT_EQ(place.snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, EachScenario, testing::ValuesIn(scenarios()),
                         [](const auto& test) { return test.param.name; });

TEST(Scenarios, MakeAHundred) { EXPECT_GE(scenarios().size(), 100U); }

/// What makes it quick is what it leaves alone.
TEST(Looking, OpensFewFiles) {
  Place place;
  place.writeIdentity(0);
  place.runHost();
  const std::string trace = traceOf(place, {"status"});
  EXPECT_LE(linesHolding(trace, "openat(").size(), 300U);
  EXPECT_LE(std::count(trace.begin(), trace.end(), '\n'), 600);
}

}  // namespace
}  // namespace vestra_test
