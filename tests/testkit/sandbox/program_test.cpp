// Programs that a sandbox executes: the host as it is shipped.

#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include "support/process.h"
#include "support/scoped_current_directory.h"

namespace {

using namespace std::chrono_literals;

using Oza::Vestra;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using namespace vestra::testkit;

class Program : public testing::Test {
 protected:
  /// What `program_host` does: see there.
  HostRun runHost(const std::string& what = "report") {
    return sandbox.runProgram({PROGRAM_HOST, what, sandbox.project()});
  }

  Sandbox sandbox;
};

TEST_F(Program, ReportLeavesTheSameRecordAsARun) {
  const HostRun run = runHost();
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", 2));
  EXPECT_THAT(run, HasNoHazards());
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.output, "the host is done\n");
  EXPECT_THAT(run, SendsAre(ElementsAre(Send{sandbox.project(), Vestra::KELVO, true})));
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].script, run.script);
  EXPECT_THAT(run.supportCalls, SizeIs(3));
  EXPECT_THAT(run.added, SizeIs(1));
}

TEST_F(Program, AnswerIsThatOfItsLastSend) {
  EXPECT_EQ(runHost().answer, true);
  const HostRun second = runHost();
  EXPECT_EQ(second.answer, false);
  EXPECT_THAT(second, Not(WasSent()));
}

TEST_F(Program, WithoutASendHasNoAnswer) {
  const HostRun run = sandbox.runProgram({"true"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_FALSE(run.answer);
  EXPECT_THAT(run, Not(WasSent()));
  EXPECT_FALSE(testing::Matches(HasNoHazards())(run));
  EXPECT_FALSE(testing::Matches(Not(HasItem(Vestra::KELVO_USAGE, "runs", 2)))(run));
}

TEST_F(Program, NameIsLookedUpFromTheCallersDirectory) {
  const std::string host = PROGRAM_HOST;
  const vestra_test::ScopedCurrentDirectory directory(host.substr(0, host.rfind('/')));
  const HostRun run = sandbox.runProgram({"." + host.substr(host.rfind('/')), "report", sandbox.project()});
  EXPECT_THAT(run, WasSent());
}

// LD_LIBRARY_PATH leads there, and the test above changes the directory.
TEST_F(Program, IsRecordedByATestKitWithARelativePath) {
  const std::string preload = preloadPath();
  const std::string libraries = preload.substr(0, preload.rfind("/vestra/testkit/"));
  const auto outcome = vestra_test::run({"/proc/self/exe", "--gtest_filter=Program.NameIsLookedUp*"},
                                        {"LD_LIBRARY_PATH=."}, libraries);
  EXPECT_EQ(outcome.status, 0) << outcome.out;
}

TEST_F(Program, ProgramThatCannotBeStartedIsNamed) {
  try {
    sandbox.runProgram({"/nowhere/host"});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "the sandbox cannot run the host: /nowhere/host: No such file or directory");
  }
  EXPECT_THROW(sandbox.runProgram({}), std::runtime_error);
}

TEST_F(Program, CrashIsTold) {
  const HostRun run = runHost("crash");
  EXPECT_TRUE(run.signal);
  EXPECT_FALSE(run.answer);
  EXPECT_FALSE(testing::Matches(Not(WasSent()))(run));
}

TEST_F(Program, IsEndedWhenItsTimeIsUp) {
  sandbox.setTimeLimit(200ms);
  const HostRun run = sandbox.runProgram({"sleep", "600"});
  EXPECT_TRUE(run.timedOut);
}

TEST_F(Program, OwnCommandsAreListedApart) {
  const HostRun run = runHost("command");
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  ASSERT_THAT(run.hostCommands, SizeIs(1));
  EXPECT_EQ(run.hostCommands[0].commandLine, "true");
  EXPECT_THAT(run.script, HasSubstr("vestra_terminate\n"));
}

TEST_F(Program, SeesTheClockThatIsHeld) {
  sandbox.setNow(1600000000);
  const HostRun run = runHost("time");
  EXPECT_EQ(run.output, "1600000000 1600000000 1600000000\n");
}

}  // namespace
