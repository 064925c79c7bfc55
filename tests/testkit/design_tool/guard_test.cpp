#include "design_tool/guard.h"

#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <iostream>
#include <sstream>

#include <unistd.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/script_evaluation.h"
#include "testkit/design_tool/sanitizers.h"

namespace vestra::design_tool {
namespace {

/// Small, so that a test is short; the interpreter's own limits stay out of the way.
const Allowance SMALL{std::chrono::milliseconds(200), std::size_t{128} << 20, std::chrono::seconds(600)};

const Allowance PATIENT{std::chrono::seconds(60), SMALL.memory, SMALL.wait};

struct Guarded {
  int status;
  std::string err;
};

Guarded guarded(const std::function<int()>& work, const Allowance& allowance = SMALL) {
  std::ostringstream err;
  const int status = runGuarded("s.tcl", work, err, allowance);
  return {status, err.str()};
}

constexpr int REFUSED = 9;

Guarded evaluated(const std::string& script, const Allowance& allowance = SMALL) {
  const auto evaluate = [&] {
    try {
      evaluateScript("s.tcl", script, {}, &noteLine);
    } catch (const DiagnosedError&) {
      return REFUSED;
    }
    return 0;
  };
  return guarded(evaluate, allowance);
}

void work(std::chrono::milliseconds time) {
  const std::clock_t end = std::clock() + time.count() * CLOCKS_PER_SEC / 1000;
  while (std::clock() < end) {
  }
}

TEST(Guard, AStatusIsPassedOn) {
  const Guarded run = guarded([] { return 7; });
  EXPECT_EQ(run.status, 7);
  EXPECT_EQ(run.err, "");
}

TEST(Guard, ADeathIsReportedWithItsLine) {
  const Guarded run = guarded([] {
    noteLine(3);
    return std::raise(SIGKILL);
  });
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "s.tcl:3: the script has brought the interpreter down (Killed)\n");
}

TEST(Guard, ACommandThatNeverLooksUpIsStoppedByTheProcessorTime) {
  std::string pattern;
  for (int i = 0; i < 20; ++i) {
    pattern += "*a";
  }
  const Guarded run = evaluated("set text [string repeat a 400]\nstring match " + pattern + "*b $text\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "s.tcl:2: the command has run for more than 0.2 s of processor time\n");
}

TEST(Guard, EachLineHasItsOwnProcessorTime) {
  const Guarded run = guarded([] {
    for (std::size_t line = 1; line <= 8; ++line) {
      noteLine(line);
      work(std::chrono::milliseconds(50));
    }
    noteLine(0);
    work(std::chrono::milliseconds(300));
    return 0;
  });
  EXPECT_EQ(run.status, 0) << run.err;
}

TEST(Guard, ACommandThatAsksForTooMuchMemoryIsStopped) {
  if (IS_SANITIZED) {
    GTEST_SKIP() << "a sanitizer reserves more memory than any limit";
  }
  for (const char* command : {"format %2000000000d 1", "set x ab; while 1 {append x $x}"}) {
    const Guarded run = evaluated(std::string("set i 1\n") + command + "\n", PATIENT);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_EQ(run.err, "s.tcl:2: the command needs more than 128 MiB of memory\n") << command;
  }
  for (const char* command : {"string repeat ab 1000000000", "lrepeat 1000000000 a"}) {
    EXPECT_EQ(evaluated(command, PATIENT).status, REFUSED) << command;
  }
}

TEST(Guard, MemoryIsNotLimitedOnceTheScriptIsOver) {
  const Guarded run = guarded([] {
    noteLine(1);
    noteLine(0);
    return std::string(std::size_t{150} << 20, 'a').back() == 'a' ? 0 : 1;
  });
  EXPECT_EQ(run.status, 0) << run.err;
}

TEST(Guard, ARunThatSleepsIsEndedByTheClockOnTheWall) {
  Allowance impatient = SMALL;
  impatient.wait = std::chrono::milliseconds(30);
  const Guarded run = guarded(
      [] {
        noteLine(4);
        return ::pause();
      },
      impatient);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "s.tcl:4: the run has not ended for 0.03 s\n");
}

}  // namespace
}  // namespace vestra::design_tool
