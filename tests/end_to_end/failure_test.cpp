// Each way in which a report can fail, and the state of every file after it.

#include <unistd.h>

#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

using Oza::Vestra;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HasItem;
using vestra::testkit::HostRun;
using vestra::testkit::Threw;

constexpr const char* NULL_TEXT = "basic_string::_M_construct null not valid";

class Failure : public Scenario {
 protected:
  Failure() { useRecordingTool(); }

  void answerNull(const std::string& name) {
    answers.null = {name};
    sandbox.setSupportAnswers(answers);
  }
};

TEST_F(Failure, ANullKeyOrValueThrowsAndAddsNothing) {
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    for (const auto& [key, value] :
         {std::pair<const char*, const char*>{nullptr, "v"}, {"k", nullptr}, {nullptr, nullptr}}) {
      try {
        Vestra::add(key, value, Vestra::KELVO_USAGE);
      } catch (const std::logic_error& error) {
        Vestra::add("caught", error.what(), Vestra::KELVO_COMMAND_LINE_OPTIONS);
      }
    }
  });
  EXPECT_THAT(run.values(Vestra::KELVO_COMMAND_LINE_OPTIONS, "caught"),
              ElementsAre(NULL_TEXT, NULL_TEXT, NULL_TEXT));
  EXPECT_THAT(run.script, testing::Not(testing::HasSubstr("-context \"kelvo\\\\usage\"")));
}

TEST_F(Failure, ANullProjectDirectoryThrowsAndCreatesNothing) {
  const HostRun run = sandbox.runProcess([] { return Vestra::send(nullptr, Vestra::KELVO); });
  EXPECT_THAT(run, Threw("std::logic_error", NULL_TEXT));
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_FALSE(run.settings);
  EXPECT_FALSE(exists(sandbox.project() + "/vestra"));
}

TEST_F(Failure, RemovedCurrentDirectoryThrowsEvenForAnAbsoluteProject) {
  const std::string project = sandbox.project();
  const std::string gone = sandbox.directory() + "/gone";
  const HostRun run = sandbox.runProcess([&] {
    fs::create_directory(gone);
    fs::current_path(gone);
    fs::remove(gone);
    return Vestra::send(project.c_str(), Vestra::KELVO);
  });
  ASSERT_TRUE(run.exception) << run;
  EXPECT_THAT(run.exception->type, testing::HasSubstr("boost::filesystem::filesystem_error"));
  EXPECT_FALSE(run.settings);
}

TEST_F(Failure, ANullEnvironmentTextThrowsBeforeTheScriptIsWritten) {
  answerNull("environment");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_THAT(run, Threw("std::logic_error", NULL_TEXT));
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info", "usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(run.identity->text, "");
}

TEST_F(Failure, ANullRegistrationIdentifierThrowsWithTheScriptPartlyWritten) {
  answerNull("regid");
  const HostRun run = sandbox.run(Vestra::TAVLO, [] { Vestra::add("k", "v", Vestra::TAVLO_USAGE); });
  EXPECT_THAT(run, Threw("std::logic_error", NULL_TEXT));
  EXPECT_THAT(run.toolRuns, IsEmpty());
  EXPECT_THAT(run.script, testing::EndsWith("-key k -value \"v\" -context \"tavlo\\\\usage\"\n"));
  EXPECT_EQ(run.identity->text, "");
}

TEST_F(Failure, ANullToolThrowsAfterTheAttemptWasCounted) {
  writeFile(inVestraDirectory("tavlo_vestra.log"), "an old log\n");
  answerNull("exec_path");
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_THAT(run, Threw("std::logic_error", NULL_TEXT));
  EXPECT_THAT(run.toolRuns, IsEmpty());
  EXPECT_EQ(run.identity->iteration, 2U);
  EXPECT_GT(run.identity->lastSendTimeDefault, 0);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info", "tavlo_vestra.log",
                                                    "tavlo_vestra.tcl", "usage_statistics_ext_tavlo.wdm"));
  EXPECT_EQ(readFile(inVestraDirectory("tavlo_vestra.log")), "an old log\n");
}

TEST_F(Failure, AHostMayGoOnAfterAnException) {
  answerNull("regid");
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

TEST_F(Failure, AnIdentityWithWordsForNumbersIsDeletedAndTheNextRunStartsAnew) {
  writeIdentity("abc\n0\n5\n0\nold\n");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, false);
  EXPECT_THAT(filesInVestraDirectory(), IsEmpty());
  EXPECT_TRUE(run.settings);
  const HostRun next = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(next.answer, true);
  EXPECT_EQ(next.identity->iteration, 2U);
  EXPECT_NE(next.identity->projectId, "old");
}

TEST_F(Failure, AnEmptyIdentityHasAnEmptyIdentifier) {
  writeIdentity("");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", ""));
  EXPECT_THAT(run.identity->text, testing::MatchesRegex("[0-9]+\n0\n2\n0\n\n"));
}

TEST_F(Failure, ADirectoryInTheIdentitysPlaceFailsAndStays) {
  fs::create_directories(sandbox.identityFile());
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, false);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
}

TEST_F(Failure, ReadOnlyProjectFails) {
  openToEverybody();
  fs::permissions(sandbox.project(), fs::perms(0555));
  const HostRun run = sandbox.run(Vestra::KELVO, [] { becomeOrdinaryUser(); });
  EXPECT_EQ(run.answer, false) << run;
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_FALSE(exists(sandbox.project() + "/vestra"));
}

TEST_F(Failure, ReadOnlyIdentityFailsAndStays) {
  writeIdentity("1\n2\n3\n0\nmine\n");
  openToEverybody();
  fs::permissions(sandbox.identityFile(), fs::perms(0444));
  const HostRun run = sandbox.run(Vestra::KELVO, [] { becomeOrdinaryUser(); });
  EXPECT_EQ(run.answer, false) << run;
  EXPECT_EQ(run.identity->text, "1\n2\n3\n0\nmine\n");
}

TEST_F(Failure, ReadOnlyHomeGivesAnEmptyIdentifier) {
  openToEverybody();
  fs::permissions(sandbox.home(), fs::perms(0555));
  const HostRun run = sandbox.run(Vestra::KELVO, [] { becomeOrdinaryUser(); });
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", ""));
  EXPECT_FALSE(run.settings);
}

TEST_F(Failure, UnsearchableHomeGivesAnEmptyIdentifier) {
  openToEverybody();
  fs::permissions(sandbox.home(), fs::perms(0));
  const HostRun run = sandbox.run(Vestra::KELVO, [] { becomeOrdinaryUser(); });
  fs::permissions(sandbox.home(), fs::perms(0755));
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", ""));
}

TEST_F(Failure, ReportFilesInAReadOnlyDirectoryThrowAfterTheRun) {
  writeIdentity("");
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), "");
  writeFile(inVestraDirectory("usage_statistics_ext_kelvo.wdm"), "");
  openToEverybody();
  fs::permissions(inVestraDirectory(""), fs::perms(0555));
  const HostRun run = sandbox.run(Vestra::KELVO, [] { becomeOrdinaryUser(); });
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  ASSERT_TRUE(run.exception) << run;
  EXPECT_THAT(run.exception->type, testing::HasSubstr("boost::filesystem::filesystem_error"));
}

}  // namespace
}  // namespace vestra_test
