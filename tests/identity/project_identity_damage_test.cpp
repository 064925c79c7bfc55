#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "identity/project_fixture.h"
#include "identity/vestra_project_info.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/special_files.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using namespace std::string_literals;
using vestra_test::asOrdinaryUser;
using vestra_test::exists;
using vestra_test::isRandomUuid;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

/// Damage to the project identity file, and what the library makes of it.
class DamagedIdentity : public vestra_test::ProjectFixture {
 protected:
  bool loads() { return VestraProjectInfo(file(), &handler).loadOrCreate(); }

  std::string loadsForAnOrdinaryUser() {
    return asOrdinaryUser([&] { return loads() ? "true" : "false"; });
  }

  /// The file is deleted, and the project is new at the next run.
  void expectDeletedAndMadeNew(const std::string& bytes) {
    writeIdentity(bytes);
    EXPECT_FALSE(loads());
    EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});

    VestraProjectInfo next(file(), &handler);
    EXPECT_TRUE(next.loadOrCreate());
    EXPECT_TRUE(isRandomUuid(next.getProjectId())) << next.getProjectId();
    EXPECT_EQ(next.getIteration(), 1U);
    EXPECT_EQ(identity(), "");
  }
};

TEST_F(DamagedIdentity, WordForTheFirstTimeIsDeleted) { expectDeletedAndMadeNew("abc\n0\n1\n0\nid\n"); }

TEST_F(DamagedIdentity, WordForTheSecondTimeIsDeleted) { expectDeletedAndMadeNew("0\nabc\n1\n0\nid\n"); }

TEST_F(DamagedIdentity, WordForTheIterationIsDeleted) { expectDeletedAndMadeNew("0\n0\nabc\n0\nid\n"); }

TEST_F(DamagedIdentity, WordForTheFlagIsDeleted) { expectDeletedAndMadeNew("0\n0\n1\nabc\nid\n"); }

TEST_F(DamagedIdentity, TimePastItsTypeIsDeleted) {
  expectDeletedAndMadeNew("9223372036854775808\n0\n1\n0\nid\n");
  expectDeletedAndMadeNew("0\n-9223372036854775809\n1\n0\nid\n");
}

TEST_F(DamagedIdentity, IterationPastTheSignedRangeIsDeleted) {
  expectDeletedAndMadeNew("0\n0\n9223372036854775808\n0\nid\n");
}

TEST_F(DamagedIdentity, FlagPastItsTypeIsDeleted) {
  expectDeletedAndMadeNew("0\n0\n1\n3000000000\nid\n");
  expectDeletedAndMadeNew("0\n0\n1\n2147483648\nid\n");
  expectDeletedAndMadeNew("0\n0\n1\n-2147483649\nid\n");
}

TEST_F(DamagedIdentity, LineOfBlanksIsDeleted) { expectDeletedAndMadeNew(" \n0\n1\n0\nid\n"); }

TEST_F(DamagedIdentity, EmptyLinesWithDosEndsAreDeleted) { expectDeletedAndMadeNew("\r\n\r\n"); }

TEST_F(DamagedIdentity, FileOfNulBytesIsDeleted) { expectDeletedAndMadeNew(std::string(4096, '\0')); }

TEST_F(DamagedIdentity, BinaryRubbishIsDeleted) {
  expectDeletedAndMadeNew(
      "\x7f"
      "ELF\0\xff\xfe\n\n\n"s);
}

TEST_F(DamagedIdentity, BytesAbove127ForANumberAreDeleted) {
  expectDeletedAndMadeNew("\xd9\xa1\xd9\xa2\n0\n1\n0\nid\n");
}

TEST_F(DamagedIdentity, ByteOrderMarkIsDeleted) {
  expectDeletedAndMadeNew(
      "\xef\xbb\xbf"
      "0\n0\n1\n0\nid\n");
}

TEST_F(DamagedIdentity, MegabyteOfLettersIsDeleted) { expectDeletedAndMadeNew(std::string(1048576, 'x')); }

TEST_F(DamagedIdentity, MegabyteOfDigitsIsDeleted) { expectDeletedAndMadeNew(std::string(1048576, '9')); }

TEST_F(DamagedIdentity, LostFirstLineIsDeletedWhereTheIdentifierStandsForTheFlag) {
  expectDeletedAndMadeNew("0\n1\n0\nid\n");
}

TEST_F(DamagedIdentity, DamagedIdentityIsDeletedEvenWhereTheHostHasAnIdentifier) {
  handler.addData("project_id", "host's own", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  writeIdentity("abc\n");
  EXPECT_FALSE(loads());
  EXPECT_FALSE(exists(file()));
}

TEST_F(DamagedIdentity, OnlyALinkToItIsDeleted) {
  writeFile(project / "target", "abc\n");
  makeLink(file(), project / "target");
  EXPECT_FALSE(loads());
  EXPECT_FALSE(exists(file()));
  EXPECT_EQ(readFile(project / "target"), "abc\n");
}

TEST_F(DamagedIdentity, DosLineEndsEndUpInTheIdentifier) {
  writeIdentity("1\r\n2\r\n3\r\n0\r\nid\r\n");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "id\r");
  EXPECT_EQ(record.getIteration(), 3U);
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n2\n4\n0\nid\r\n");
}

TEST_F(DamagedIdentity, NulBytesInTheIdentifierAreKept) {
  writeIdentity("1\n2\n3\n0\ni\0d\n"s);
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  record.recordSendAttempt();
  EXPECT_EQ(identity(), "1700000000\n2\n4\n0\ni\0d\n"s);
}

TEST_F(DamagedIdentity, IdentifierEndsWithTheFirstMegabyteOfTheFile) {
  const std::string numbers = "1\n2\n3\n0\n";
  writeIdentity(numbers + std::string(1048576, 'x') + "\n");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId().size(), 1048576 - numbers.size());
}

TEST_F(DamagedIdentity, EveryTruncationOfAGoodFileIsUsedAndWrittenWholeAgain) {
  const std::string good = "1600000000\n-1600000000\n42\n1\n3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  const std::string loneSign = "1600000000\n-";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    if (length == loneSign.size()) {
      continue;
    }
    writeIdentity(good.substr(0, length));
    VestraProjectInfo record(file(), &handler);
    ASSERT_TRUE(record.loadOrCreate()) << "length " << length;
    record.recordSendAttempt();
    VestraProjectInfo next(file(), &handler);
    EXPECT_TRUE(next.loadOrCreate()) << "length " << length;
    EXPECT_EQ(next.getIteration(), record.getIteration()) << "length " << length;
    EXPECT_EQ(next.getOrbeloFlow(), record.getOrbeloFlow()) << "length " << length;
    EXPECT_EQ(next.getProjectId(), record.getProjectId()) << "length " << length;
  }
}

TEST_F(DamagedIdentity, TruncationToALoneSignIsDeleted) { expectDeletedAndMadeNew("1600000000\n-"); }

TEST_F(DamagedIdentity, DirectoryInItsPlaceCannotBeUsed) {
  makeDirectory(file());
  EXPECT_FALSE(loads());
  EXPECT_TRUE(exists(file()));
}

TEST_F(DamagedIdentity, NamedPipeInItsPlaceCannotBeUsed) {
  makeNamedPipe(file());
  EXPECT_FALSE(loads());
  EXPECT_TRUE(exists(file()));
}

TEST_F(DamagedIdentity, LinkToANamedPipeCannotBeUsed) {
  makeNamedPipe(project / "pipe");
  makeLink(file(), project / "pipe");
  EXPECT_FALSE(loads());
}

TEST_F(DamagedIdentity, NamedPipeThatCameLaterIsNotWaitedForByAnAttempt) {
  VestraProjectInfo record(file(), &handler);
  ASSERT_TRUE(record.loadOrCreate());
  unlink(file().c_str());
  makeNamedPipe(file());
  EXPECT_TRUE(record.recordSendAttempt());
}

TEST_F(DamagedIdentity, SocketInItsPlaceCannotBeUsed) {
  makeSocket(file());
  EXPECT_FALSE(loads());
}

TEST_F(DamagedIdentity, LinkToItselfCannotBeUsed) {
  makeLink(file(), ".kelvo_vestrra.info");
  EXPECT_FALSE(loads());
}

TEST_F(DamagedIdentity, LinkToNowhereBecomesANewProject) {
  makeLink(file(), project / "elsewhere");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  record.recordSendAttempt();
  EXPECT_EQ(readFile(project / "elsewhere"), "1700000000\n0\n2\n0\n" + record.getProjectId() + "\n");
}

TEST_F(DamagedIdentity, LinkIntoAMissingDirectoryCannotBeUsed) {
  makeLink(file(), project / "missing/elsewhere");
  EXPECT_FALSE(loads());
}

TEST_F(DamagedIdentity, NullDeviceIsAnEmptyFile) {
  makeLink(file(), "/dev/null");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "");
  EXPECT_EQ(record.getIteration(), 1U);
}

TEST_F(DamagedIdentity, EndlessDeviceIsNotRead) {
  makeLink(file(), "/dev/zero");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_EQ(record.getProjectId(), "");
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(DamagedIdentity, ReadErrorMakesItUnusableAndDeletesNothing) {
  makeLink(file(), "/proc/self/mem");
  EXPECT_FALSE(loads());
  EXPECT_TRUE(exists(file()));
}

TEST_F(DamagedIdentity, FileForTheVestraDirectoryCannotBeUsed) {
  writeFile(project / "vestra", "");
  EXPECT_FALSE(loads());
  EXPECT_EQ(readFile(project / "vestra"), "");
}

TEST_F(DamagedIdentity, FileForTheProjectDirectoryCannotBeUsed) {
  writeFile(project / "file", "");
  handler.setProjectDirectory(project / "file");
  EXPECT_FALSE(handler.setupVestraInfo());
}

TEST_F(DamagedIdentity, ReadOnlyProjectDirectoryCannotBeUsed) {
  const ScopedMode readOnly(project.path(), 0555);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

TEST_F(DamagedIdentity, ReadOnlyVestraDirectoryWithoutTheFileCannotBeUsed) {
  makeDirectory(project / "vestra");
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});
}

TEST_F(DamagedIdentity, VestraDirectoryThatNobodyMayEnterCannotBeUsed) {
  writeIdentity("0\n0\n1\n0\nid\n");
  const ScopedMode shut(project / "vestra", 0000);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
}

TEST_F(DamagedIdentity, ReadOnlyFileCannotBeUsed) {
  writeIdentity("0\n0\n1\n0\nid\n");
  const ScopedMode readOnly(file(), 0444);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  EXPECT_EQ(identity(), "0\n0\n1\n0\nid\n");
}

TEST_F(DamagedIdentity, FileWithoutPermissionsCannotBeUsed) {
  writeIdentity("0\n0\n1\n0\nid\n");
  const ScopedMode none(file(), 0000);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
}

TEST_F(DamagedIdentity, UnreadableFileThatCanBeWrittenIsStartedEmpty) {
  writeIdentity("0\n0\n42\n0\nid\n");
  const ScopedMode writeOnly(file(), 0222);
  EXPECT_EQ(asOrdinaryUser([&] {
              VestraProjectInfo record(file(), &handler);
              const bool loaded = record.loadOrCreate();
              return std::string(loaded ? "true" : "false") + " \"" + record.getProjectId() + "\" " +
                     std::to_string(record.getIteration());
            }),
            "true \"\" 1");
  const ScopedMode readable(file(), 0644);
  EXPECT_EQ(identity(), "");
}

TEST_F(DamagedIdentity, UnreadableFileThatCanBeWrittenGetsTheFiveLines) {
  writeIdentity("0\n0\n42\n0\nid\n");
  const ScopedMode writeOnly(file(), 0222);
  EXPECT_EQ(asOrdinaryUser([&] {
              VestraProjectInfo record(file(), &handler);
              return record.loadOrCreate() && record.recordSendAttempt() ? "due" : "not due";
            }),
            "due");
  const ScopedMode readable(file(), 0644);
  EXPECT_EQ(identity(), "1700000000\n0\n2\n0\n\n");
}

TEST_F(DamagedIdentity, NamedPipeThatCanOnlyBeWrittenCannotBeUsed) {
  makeNamedPipe(file());
  const int reader = open(file().c_str(), O_RDONLY | O_NONBLOCK);
  const ScopedMode writeOnly(file(), 0222);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  close(reader);
}

TEST_F(DamagedIdentity, NewFileThatTheUmaskMakesUnreadableGetsTheFiveLines) {
  const ScopedMode anybody(project.path(), 0777);
  EXPECT_EQ(asOrdinaryUser([&] {
              const mode_t before = umask(0444);
              VestraProjectInfo record(file(), &handler);
              const bool due = record.loadOrCreate() && record.recordSendAttempt();
              umask(before);
              return due ? "due" : "not due";
            }),
            "due");
  const ScopedMode enterable(project / "vestra", 0755);
  const ScopedMode readable(file(), 0644);
  EXPECT_EQ(identity().substr(0, 17), "1700000000\n0\n2\n0\n");
}

TEST_F(DamagedIdentity, DamagedIdentityThatCannotBeDeletedStaysAndCannotBeUsed) {
  writeIdentity("abc\n");
  const ScopedMode anybody(file(), 0666);
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  EXPECT_EQ(identity(), "abc\n");
}

}  // namespace
}  // namespace Oza
