// Pipes, directories, devices and links in the places of the library's files: none of them
// may block or crash the host, and nothing in them may be lost.

#include <sys/stat.h>

#include <cstdint>

#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

using Oza::Vestra;
using testing::MatchesRegex;
using testing::SizeIs;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HasItem;
using vestra::testkit::HostRun;

class UnusualFile : public Scenario {
 protected:
  UnusualFile() {
    useRecordingTool();
    fs::create_directories(inVestraDirectory(""));
    fs::create_directories(fs::path(sandbox.settingsFile()).parent_path());
  }

  HostRun send() {
    return sandbox.run(Vestra::KELVO, [] {});
  }
};

void makePipe(const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0666), 0); }

TEST_F(UnusualFile, APipeInTheSettingsPlaceGivesAnEmptyIdentifier) {
  makePipe(sandbox.settingsFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", ""));
}

TEST_F(UnusualFile, ADirectoryInTheSettingsPlaceGivesAnEmptyIdentifier) {
  fs::create_directory(sandbox.settingsFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", ""));
}

TEST_F(UnusualFile, ADeviceInTheSettingsPlaceIsNotRead) {
  fs::create_symlink("/dev/zero", sandbox.settingsFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(
      run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", MatchesRegex("[0-9a-f-]{36}")));
}

TEST_F(UnusualFile, ADanglingLinkInTheSettingsPlaceIsWrittenThrough) {
  fs::create_symlink(sandbox.home() + "/target", sandbox.settingsFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(readFile(sandbox.home() + "/target"), MatchesRegex("RandomID=[0-9a-f-]{36}\n"));
}

TEST_F(UnusualFile, ALinkToItselfInTheSettingsPlaceGivesAnEmptyIdentifier) {
  fs::create_symlink(sandbox.settingsFile(), sandbox.settingsFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", ""));
}

TEST_F(UnusualFile, APipeInTheIdentitysPlaceFails) {
  makePipe(sandbox.identityFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, false) << run;
  EXPECT_EQ(fs::status(sandbox.identityFile()).type(), fs::fifo_file);
}

TEST_F(UnusualFile, ADeviceInTheIdentitysPlaceIsNotRead) {
  fs::create_symlink("/dev/zero", sandbox.identityFile());
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", ""));
}

TEST_F(UnusualFile, ALinkToItselfInTheIdentitysPlaceFails) {
  fs::create_symlink(sandbox.identityFile(), sandbox.identityFile());
  EXPECT_EQ(send().answer, false);
}

TEST_F(UnusualFile, ADanglingLinkInTheIdentitysPlaceIsWrittenThrough) {
  fs::create_symlink(sandbox.directory() + "/identity", sandbox.identityFile());
  EXPECT_EQ(send().answer, true);
  EXPECT_THAT(readFile(sandbox.directory() + "/identity"), MatchesRegex("[0-9]+\n0\n2\n0\n[0-9a-f-]{36}\n"));
}

TEST_F(UnusualFile, AFileInTheVestraDirectorysPlaceFailsAndStays) {
  fs::remove(inVestraDirectory(""));
  writeFile(sandbox.project() + "/vestra", "mine");
  EXPECT_EQ(send().answer, false);
  EXPECT_EQ(readFile(sandbox.project() + "/vestra"), "mine");
}

TEST_F(UnusualFile, APipeInTheScriptsPlaceIsNotOpenedAndIsRemovedAfterTheRun) {
  makePipe(inVestraDirectory("kelvo_vestra.tcl"));
  answers.execPath = "true";
  sandbox.setSupportAnswers(answers);
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(UnusualFile, AFullDirectoryInTheScriptsPlaceThrowsAfterTheRun) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl/mine"), "mine");
  const HostRun run = send();
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  ASSERT_TRUE(run.exception) << run;
  EXPECT_THAT(run.exception->type, testing::HasSubstr("boost::filesystem::filesystem_error"));
  EXPECT_EQ(readFile(inVestraDirectory("kelvo_vestra.tcl/mine")), "mine");
}

TEST_F(UnusualFile, APipeInTheRulesPlaceIsNotOpened) {
  makePipe(inVestraDirectory("usage_statistics_ext_kelvo.wdm"));
  answers.execPath = "true";
  sandbox.setSupportAnswers(answers);
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, EndedQuietly());
}

// More than there is memory.
TEST_F(UnusualFile, AHugeSparseFileInTheRulesPlaceIsReplacedUnread) {
  const std::string rules = inVestraDirectory("usage_statistics_ext_kelvo.wdm");
  writeFile(rules, "");
  fs::resize_file(rules, std::uintmax_t{1} << 40U);
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_THAT(run, EndedQuietly());
}

TEST_F(UnusualFile, AFullDirectoryInTheLogsPlaceThrowsBeforeTheTool) {
  writeFile(inVestraDirectory("tavlo_vestra.log/mine"), "mine");
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_THAT(run.toolRuns, SizeIs(0));
  ASSERT_TRUE(run.exception) << run;
  EXPECT_THAT(run.exception->type, testing::HasSubstr("boost::filesystem::filesystem_error"));
  EXPECT_EQ(run.identity->iteration, 2U);
}

TEST_F(UnusualFile, APipeInTheLogsPlaceIsReplaced) {
  makePipe(inVestraDirectory("tavlo_vestra.log"));
  EXPECT_EQ(sandbox.run(Vestra::TAVLO, [] {}).answer, true);
  EXPECT_EQ(readFile(inVestraDirectory("tavlo_vestra.log")), "");
}

TEST_F(UnusualFile, VestraDirectoryRemovedDuringTheRunIsNoError) {
  answers.execPath = "rm -rf " + inVestraDirectory("") + "; true";
  sandbox.setSupportAnswers(answers);
  const HostRun run = send();
  EXPECT_EQ(run.answer, true) << run;
  EXPECT_FALSE(exists(inVestraDirectory("")));
}

}  // namespace
}  // namespace vestra_test
