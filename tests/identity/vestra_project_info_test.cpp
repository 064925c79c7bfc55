#include "identity/vestra_project_info.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "identity/project_fixture.h"
#include "support/files.h"
#include "support/interposed/clock.h"
#include "support/scoped_current_directory.h"
#include "support/scoped_locale.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using std::chrono::system_clock;
using vestra_test::dateFile;
using vestra_test::isRandomUuid;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedTime;

class ProjectInfo : public vestra_test::ProjectFixture {
 protected:
  VestraProjectInfo record{file(), &handler};
};

TEST_F(ProjectInfo, RecordOfANewProjectHasANewIdentifierAndAnEmptyFile) {
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  EXPECT_EQ(record.getIteration(), 1U);
  EXPECT_EQ(record.getOrbeloFlow(), 0);
  EXPECT_EQ(identity(), "");
}

TEST_F(ProjectInfo, RecordOfANewProjectMakesTheMissingDirectories) {
  VestraProjectInfo deep(project / "a/b/vestra/.kelvo_vestrra.info", &handler);
  EXPECT_TRUE(deep.loadOrCreate());
  EXPECT_EQ(namesIn(project / "a/b/vestra"), std::vector<std::string>{".kelvo_vestrra.info"});
}

TEST_F(ProjectInfo, RecordOfANewProjectTakesTheLastNineteenBytesOfThePathForTheName) {
  VestraProjectInfo odd(project / "vestra/123456789 123456789", &handler);
  EXPECT_TRUE(odd.loadOrCreate());
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{"123456789 123456789"});
  EXPECT_EQ(readFile(project / "vestra/123456789 123456789"), "");
}

TEST_F(ProjectInfo, RecordOfANewProjectReachesTheFileWithTheFirstAttempt) {
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_EQ(identity(), "1700000000\n0\n2\n0\n" + record.getProjectId() + "\n");
}

TEST_F(ProjectInfo, RecordOfANewProjectTakesTheHostsIdentifier) {
  handler.addData("project_id", "host's own", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "host's own");
  EXPECT_EQ(record.getOrbeloFlow(), 1);
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n0\n2\n1\nhost's own\n");
}

TEST_F(ProjectInfo, RecordOfANewProjectTakesTheHostsIdentifierInCapitals) {
  handler.addData("PROJECT_ID", "loud", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "loud");
  EXPECT_EQ(record.getOrbeloFlow(), 1);
}

TEST_F(ProjectInfo, EmptyIdentifierOfTheHostCountsAsNone) {
  handler.addData("project_id", "", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  EXPECT_EQ(record.getOrbeloFlow(), 0);
}

TEST_F(ProjectInfo, RecordIsLoadedFromTheFile) {
  writeIdentity("1\n2\n42\n0\nstored\n");
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "stored");
  EXPECT_EQ(record.getIteration(), 42U);
  EXPECT_EQ(record.getOrbeloFlow(), 0);
  EXPECT_EQ(identity(), "1\n2\n42\n0\nstored\n");
}

TEST_F(ProjectInfo, EmptyFileThatIsDatedInTheFutureCountsAsAnOlderRuns) {
  writeIdentity("");
  dateFile(file(), system_clock::now() + std::chrono::hours(24));
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "");
}

TEST_F(ProjectInfo, EmptyFileThatStaysYoungForLongerThanTheBoundHasNoIdentifier) {
  writeIdentity("");
  dateFile(file(), system_clock::now() + std::chrono::milliseconds(240));
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "");
}

TEST_F(ProjectInfo, RecordOfAnEmptyFileTakesTheHostsIdentifierWithoutTheFlag) {
  writeIdentity("");
  handler.addData("project_id", "host's own", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "host's own");
  EXPECT_EQ(record.getOrbeloFlow(), 0);
}

TEST_F(ProjectInfo, HostsIdentifierWinsOverTheStoredOneAndTheFlagStays) {
  writeIdentity("1\n2\n42\n0\nstored\n");
  handler.addData("Project_Id", "host's own", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "host's own");
  EXPECT_EQ(record.getOrbeloFlow(), 0);
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n2\n43\n0\nhost's own\n");
}

TEST_F(ProjectInfo, StoredFlagStaysWithoutAHostsIdentifier) {
  writeIdentity("1\n2\n42\n1\nstored\n");
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getOrbeloFlow(), 1);
  EXPECT_EQ(record.getProjectId(), "stored");
}

TEST_F(ProjectInfo, IdentifierInAnotherSectionIsNotTheHosts) {
  handler.addData("project_id", "elsewhere", Vestra::USER_ENVIRONMENT);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
}

TEST_F(ProjectInfo, LineEndInTheHostsIdentifierLosesWhatFollows) {
  handler.addData("project_id", "one\ntwo", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  record.loadOrCreate();
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n0\n2\n1\none\ntwo\n");

  VestraHandler other;
  VestraProjectInfo next(file(), &other);
  EXPECT_TRUE(next.loadOrCreate());
  EXPECT_EQ(next.getProjectId(), "one");
}

TEST_F(ProjectInfo, RecordCountsEveryAttempt) {
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(record.getIteration(), 4U);
  EXPECT_EQ(identity(), "1700000000\n0\n4\n0\n" + record.getProjectId() + "\n");
}

TEST_F(ProjectInfo, RecordIsNotDueAfterExactlyADay) {
  writeIdentity("1699913600\n0\n1\n0\nid\n");
  record.loadOrCreate();
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(identity(), "1699913600\n0\n2\n0\nid\n");
}

TEST_F(ProjectInfo, RecordIsDueASecondLater) {
  writeIdentity("1699913599\n0\n1\n0\nid\n");
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_EQ(identity(), "1700000000\n0\n2\n0\nid\n");
}

TEST_F(ProjectInfo, RecordIsDueOnceADay) {
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  {
    const ScopedTime dayLater(1700000000 + 86400);
    EXPECT_FALSE(record.recordSendAttempt());
  }
  {
    const ScopedTime secondLater(1700000000 + 86401);
    EXPECT_TRUE(record.recordSendAttempt());
  }
  EXPECT_EQ(identity(), "1700086401\n0\n4\n0\n" + record.getProjectId() + "\n");
}

TEST_F(ProjectInfo, AlternativeSimulatorHasATimeOfItsOwn) {
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  handler.setProductType(Vestra::KELVO_ALT);
  const ScopedTime later(1700000100);
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(identity(), "1700000000\n1700000100\n4\n0\n" + record.getProjectId() + "\n");
}

TEST_F(ProjectInfo, LabToolAndTheSimulatorShareATime) {
  handler.setProductType(Vestra::TAVLO);
  record.loadOrCreate();
  EXPECT_TRUE(record.recordSendAttempt());
  handler.setProductType(Vestra::KELVO);
  EXPECT_FALSE(record.recordSendAttempt());
  handler.setProductType(static_cast<Vestra::ProductType>(7));
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(identity(), "1700000000\n0\n4\n0\n" + record.getProjectId() + "\n");
}

TEST_F(ProjectInfo, IterationPastTheSignedRangeIsRefusedTheNextTime) {
  writeIdentity("0\n0\n9223372036854775807\n0\nid\n");
  record.loadOrCreate();
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n0\n9223372036854775808\n0\nid\n");

  VestraProjectInfo next(file(), &handler);
  EXPECT_FALSE(next.loadOrCreate());
  EXPECT_FALSE(vestra_test::exists(file()));
}

TEST_F(ProjectInfo, AttemptWritesOurBytesUnderTheHostsLocale) {
  const std::locale both(vestra_test::digitGroupingLocale(), vestra_test::caseSwappingFilesLocale(),
                         std::locale::ctype);
  const vestra_test::ScopedLocale hosts(both);
  writeIdentity("0\n0\n1000\n0\nMixed Case\n");
  record.loadOrCreate();
  EXPECT_EQ(record.getProjectId(), "Mixed Case");
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n0\n1001\n0\nMixed Case\n");
}

TEST_F(ProjectInfo, FailureToWriteIsNotNoticed) {
  writeIdentity("0\n0\n1\n0\nid\n");
  record.loadOrCreate();
  unlink(file().c_str());
  rmdir((project / "vestra").c_str());
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(record.getIteration(), 3U);
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

TEST_F(ProjectInfo, PathShorterThanTheNameIsItsOwnDirectory) {
  const std::string path = "/tmp/vestra-x";
  ASSERT_LT(path.size(), 19U);
  ASSERT_FALSE(vestra_test::exists(path));
  VestraProjectInfo odd(path, &handler);
  EXPECT_FALSE(odd.loadOrCreate());
  EXPECT_EQ(namesIn(path), std::vector<std::string>{});
  EXPECT_EQ(rmdir(path.c_str()), 0);
}

TEST_F(ProjectInfo, PathOfTheNameAloneHasNoDirectoryToMake) {
  const vestra_test::ScopedCurrentDirectory here(project.path());
  VestraProjectInfo bare(".kelvo_vestrra.info", &handler);
  EXPECT_FALSE(bare.loadOrCreate());
  EXPECT_FALSE(vestra_test::exists(project / ".kelvo_vestrra.info"));
}

TEST_F(ProjectInfo, HandlersRecordLiesInItsProjectDirectory) {
  EXPECT_TRUE(handler.setupVestraInfo());
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{".kelvo_vestrra.info"});
}

TEST_F(ProjectInfo, HandlersRecordIsMadeAnewEachTime) {
  EXPECT_TRUE(handler.setupVestraInfo());
  writeIdentity("abc\n");
  EXPECT_FALSE(handler.setupVestraInfo());
  EXPECT_TRUE(handler.setupVestraInfo());
}

}  // namespace
}  // namespace Oza
