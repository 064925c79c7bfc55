// The ways in which a host process begins, splits and ends around the library.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

#include "support/scenario/scenario.h"
#include "support/scoped_env.h"

namespace vestra_test {
namespace {

class Lifecycle : public Scenario {};

TEST_F(Lifecycle, AnUnloadedLibraryIsGoneAndCanBeLoadedAgain) {
  const std::string supportLibrary = supportLibraryPath();
  const ScopedEnv home("HOME", sandbox.home());
  const ScopedEnv loaderPath("LD_LIBRARY_PATH", supportLibrary.substr(0, supportLibrary.rfind('/')));
  const ScopedEnv tool("VESTRA_TESTKIT_EXEC_PATH", ":");
  const std::string host = UNLOADING_HOST " " VESTRA_LIBRARY " " + sandbox.project();
  EXPECT_EQ(std::system(host.c_str()), 0);
  EXPECT_THAT(readFile(sandbox.identityFile()),
              MatchesRegex(identityText(ANY_TIME, ANY_TIME, "4", "0", ANY_UUID)));
}

TEST_F(Lifecycle, AForkBetweenAddAndSendGivesBothTheItems) {
  const std::string project = sandbox.project();
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    const pid_t child = fork();
    if (child == 0) {
      std::exit(Vestra::send(project.c_str(), Vestra::KELVO) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0 && Vestra::send(project.c_str(), Vestra::KELVO_ALT);
  });
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, EndedQuietly());
  ASSERT_THAT(run.toolRuns, SizeIs(2));
  for (const auto& tool : run.toolRuns) {
    EXPECT_THAT(tool.script, HasSubstr("-key runs -value \"2\" "));
  }
  EXPECT_EQ(run.identity->iteration, 3U);
}

TEST_F(Lifecycle, AThreadMaySendAndEndTheProcess) {
  const std::string project = sandbox.project();
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    std::thread last([&] {
      Vestra::send(project.c_str(), Vestra::KELVO);
      std::exit(0);
    });
    last.join();
    return true;
  });
  EXPECT_FALSE(run.answer) << run;
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", "2"));
}

/// Destroyed after the manager when it is made before the first call; says in a file
/// what each entry point gave then.
class LateCaller {
 public:
  LateCaller(std::string projectDirectory, std::string file)
      : project(std::move(projectDirectory)), answers(std::move(file)) {}
  LateCaller(const LateCaller&) = delete;
  LateCaller& operator=(const LateCaller&) = delete;
  ~LateCaller() {
    Vestra::add("late", "1", Vestra::KELVO_USAGE);
    const bool sent = Vestra::send(project.c_str(), Vestra::KELVO_ALT);
    const bool internal = Vestra::internal();
    writeFile(answers, std::string(sent ? "sent" : "not sent") + (internal ? ", internal" : ", external") +
                           ", log \"" + Vestra::getLogFileName() + "\"");
  }

 private:
  std::string project;
  std::string answers;
};

TEST_F(Lifecycle, AStaticDestructorThatCallsAfterTheManagersIsDeclined) {
  const std::string project = sandbox.project();
  const std::string account = sandbox.directory() + "/late";
  const HostRun run = sandbox.runProcess([&] {
    static const LateCaller caller(project, account);
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    return Vestra::send(project.c_str(), Vestra::KELVO);
  });
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(readFile(account), "not sent, external, log \"\"");
}

TEST_F(Lifecycle, AStaticDestructorThatCallsBeforeTheManagersStillSends) {
  const std::string project = sandbox.project();
  const std::string account = sandbox.directory() + "/late";
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    static const LateCaller caller(project, account);
    return true;
  });
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "late", "1"));
  EXPECT_EQ(readFile(account), "sent, external, log \"" + project + "/vestra/tavlo_vestra.log\"");
}

}  // namespace
}  // namespace vestra_test
