// Several sends in one process, several processes on one project.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using vestra::testkit::contextOf;
using vestra::testkit::HostRun;
using vestra::testkit::Item;

class SeveralSends : public Scenario {
 protected:
  SeveralSends() { useRecordingTool(); }
};

std::vector<std::string> keysOf(const std::vector<Item>& items, Vestra::SectionType section) {
  std::vector<std::string> keys;
  for (const Item& item : items) {
    if (item.context == contextOf(section)) {
      keys.push_back(item.key);
    }
  }
  return keys;
}

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
  EXPECT_THAT(keysOf(run.writtenItems, Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE), SizeIs(15));
  EXPECT_THAT(run.values(Vestra::USER_ENVIRONMENT, "os_name"), ElementsAre("Linux", "Linux"));
  EXPECT_EQ(run.identity->iteration, 3U);
}

TEST_F(SeveralSends, EachDueSendOpensTheSupportLibraryAnew) {
  const std::string project = sandbox.project();
  const HostRun run = sandbox.runProcess([&] {
    return Vestra::send(project.c_str(), Vestra::KELVO) && Vestra::send(project.c_str(), Vestra::KELVO_ALT) &&
           !Vestra::send(project.c_str(), Vestra::TAVLO) && !Vestra::send(project.c_str(), Vestra::KELVO);
  });
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run.supportCalls,
              ElementsAre("oza_vestra_enviroment_data(\"KELVO\")", "oza_vestra_regid(\"Implementation\")",
                          "oza_vestra_exec_path()", "oza_vestra_enviroment_data(\"KELVO\")",
                          "oza_vestra_regid(\"Implementation\")", "oza_vestra_exec_path()",
                          "oza_vestra_enviroment_data(null)", "oza_vestra_regid(\"Implementation\")",
                          "oza_vestra_enviroment_data(\"KELVO\")", "oza_vestra_regid(\"Implementation\")"));
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
  EXPECT_THAT(text, HasSubstr("\n0\n2\n1\n" + *run.identity->projectId + "\n"));
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

TEST_F(SeveralSends, ProcessesAtOnceSendOneReportAndCountAll) {
  writeIdentity("1000\n0\n7\n0\nproject-7\n");
  const std::string project = sandbox.project();
  const std::vector<HostRun> runs = sandbox.runTogether(12, [&](int number) {
    Vestra::add("number", std::to_string(number).c_str(), Vestra::KELVO_USAGE);
    return Vestra::send(project.c_str(), number % 2 == 0 ? Vestra::KELVO : Vestra::TAVLO);
  });
  EXPECT_EQ(std::count_if(runs.begin(), runs.end(), [](const HostRun& run) { return run.answer == true; }),
            1);
  EXPECT_THAT(runs.front().identity->text, testing::MatchesRegex("[0-9]{10}\n0\n19\n0\nproject-7\n"));
}

TEST_F(SeveralSends, ForkedHalvesOfAHostSendTheSameItems) {
  const std::string project = sandbox.project();
  const std::string other = sandbox.directory() + "/other";
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("before", "fork", Vestra::KELVO_USAGE);
    const pid_t child = fork();
    if (child == 0) {
      std::exit(Vestra::send(other.c_str(), Vestra::KELVO) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0 && Vestra::send(project.c_str(), Vestra::KELVO);
  });
  EXPECT_EQ(run.answer, true) << run;
  ASSERT_THAT(run.toolRuns, SizeIs(2));
  EXPECT_THAT(run.toolRuns[0].script, HasSubstr("-key before -value \"fork\""));
  EXPECT_THAT(run.toolRuns[1].script, HasSubstr("-key before -value \"fork\""));
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

TEST_F(SeveralSends, AHostMayUnsetItsHome) {
  const HostRun run = sandbox.runProcess([&] {
    unsetenv("HOME");
    return Vestra::getLogFileName() == "/vestra/tavlo_vestra.log" && !Vestra::internal();
  });
  EXPECT_EQ(run.answer, true);
  EXPECT_FALSE(run.settings);
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

TEST_F(SeveralSends, ThreadsMayMakeTheFirstCallTogether) {
  const HostRun run = sandbox.runProcess([] {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
      threads.emplace_back([] { Vestra::getLogFileName(); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    return Vestra::getLogFileName() == "/vestra/tavlo_vestra.log";
  });
  EXPECT_EQ(run.answer, true) << run;
}

}  // namespace
}  // namespace vestra_test
