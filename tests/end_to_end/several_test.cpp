// Several sends in one process, several processes on one project.

#include <cstdlib>

#include <boost/filesystem.hpp>

#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

class SeveralSends : public Scenario {
 protected:
  SeveralSends() { useTool(); }
};

TEST_F(SeveralSends, SecondSendInAProcessKeepsTheItemsAndTheFirstFacts) {
  const std::string project = sandbox.project();
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("runs", "1", Vestra::KELVO_USAGE);
    const bool first = Vestra::send(project.c_str(), Vestra::KELVO);
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    Vestra::add("beta", "too late", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    return first && Vestra::send(project.c_str(), Vestra::KELVO_ALT);
  });
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run.toolRuns, SizeIs(2));
  EXPECT_THAT(run.values(Vestra::KELVO_USAGE, "runs"), ElementsAre("1", "2"));
  // The first occurrence wins, over a second send too.
  EXPECT_THAT(run.values(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "beta"), ElementsAre("not_applicable"));
  EXPECT_THAT(run.values(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration"), ElementsAre("1"));
  EXPECT_THAT(run.script,
              ContainsRegex("project_iteration -value \"1\" -context \"[a-z_]*\"\n[^\n]*os_name"));
  EXPECT_THAT(run.values(Vestra::USER_ENVIRONMENT, "os_name"), ElementsAre("Linux", "Linux"));
  EXPECT_EQ(run.identity->iteration, 3U);
}

TEST_F(SeveralSends, ProjectsInOneProcessShareTheFirstOnesIdentifier) {
  const std::string first = sandbox.project();
  const std::string second = sandbox.directory() + "/second";
  const HostRun run = sandbox.runProcess([&] {
    return Vestra::send(first.c_str(), Vestra::KELVO) && Vestra::send(second.c_str(), Vestra::KELVO) &&
           Vestra::getLogFileName() == second + "/vestra/tavlo_vestra.log";
  });
  EXPECT_EQ(run.answer, true);
  // What the first send filed as "project_id" counts as the host's at the second.
  const std::string text = readFile(second + "/vestra/.kelvo_vestrra.info");
  EXPECT_THAT(text, MatchesRegex(identityText(ANY_TIME, "0", "2", "1", *run.identity->projectId)));
}

TEST_F(SeveralSends, ProcessesShareTheUsersIdentifierAndTheProjects) {
  const HostRun first = sandbox.run(Vestra::KELVO, [] {});
  const HostRun second = sandbox.run(Vestra::TAVLO, [] {});
  const HostRun third = sandbox.run(Vestra::KELVO_ALT, [] {});
  EXPECT_EQ(first.settings->text, third.settings->text);
  EXPECT_THAT(third.values(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id"),
              ElementsAre(first.settings->randomId));
  EXPECT_EQ(first.identity->projectId, third.identity->projectId);
  EXPECT_EQ(third.identity->iteration, 4U);
  EXPECT_EQ(second.answer, false);
}

TEST_F(SeveralSends, AHostMayChangeItsHomeAfterTheFirstCall) {
  const std::string elsewhere = sandbox.directory() + "/elsewhere";
  const HostRun run = sandbox.run(Vestra::KELVO, [&] {
    Vestra::add("first", "call", Vestra::KELVO_USAGE);
    setenv("HOME", elsewhere.c_str(), 1);
  });
  EXPECT_EQ(run.answer, true);
  EXPECT_TRUE(run.settings);
  EXPECT_FALSE(exists(elsewhere));
}

TEST_F(SeveralSends, AHostMayChangeItsDirectoryBetweenSends) {
  const std::string directory = sandbox.directory();
  boost::filesystem::create_directories(directory + "/a");
  boost::filesystem::create_directories(directory + "/b");
  const HostRun run = sandbox.runProcess([&] {
    boost::filesystem::current_path(directory + "/a");
    const bool first = Vestra::send("project", Vestra::KELVO);
    boost::filesystem::current_path(directory + "/b");
    return first && Vestra::send("project", Vestra::KELVO);
  });
  EXPECT_EQ(run.answer, true);
  EXPECT_TRUE(exists(directory + "/a/project/vestra/.kelvo_vestrra.info"));
  EXPECT_TRUE(exists(directory + "/b/project/vestra/.kelvo_vestrra.info"));
}

TEST_F(SeveralSends, AHostMayGoOnAfterAnException) {
  answers.null = {"regid"};
  sandbox.setSupportAnswers(answers);
  const std::string project = sandbox.project();
  const HostRun run = sandbox.runProcess([&] {
    try {
      Vestra::send(project.c_str(), Vestra::KELVO);
    } catch (const std::logic_error&) {
      unsetenv("VESTRA_TESTKIT_NULL");
    }
    return Vestra::send(project.c_str(), Vestra::KELVO);
  });
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run.toolRuns, SizeIs(1));
}

}  // namespace
}  // namespace vestra_test
