#include "files/replace_file.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/failing_system_call.h"
#include "support/files.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using vestra_test::asOrdinaryUser;
using vestra_test::dateFile;
using vestra_test::failSystemCall;
using vestra_test::inChildProcess;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

struct stat statusOfFile(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status;
}

constexpr char ACCESS_LIST[] = "system.posix_acl_access";
constexpr char DEFAULT_LIST[] = "system.posix_acl_default";

/// An access list as the kernel keeps it, little-endian, by which one more user may read.
std::string accessListFor(std::uint32_t user) {
  struct Entry {
    std::uint16_t tag;
    std::uint16_t permissions;
    std::uint32_t id;
  };
  constexpr std::uint32_t version = 2;
  constexpr std::uint32_t nobody = 0xFFFFFFFF;
  const Entry entries[] = {
      {1, 6, nobody}, {2, 4, user}, {4, 4, nobody}, {0x10, 4, nobody}, {0x20, 0, nobody}};
  return std::string(reinterpret_cast<const char*>(&version), sizeof version) +
         std::string(reinterpret_cast<const char*>(entries), sizeof entries);
}

bool giveList(const std::string& path, const char* kind, const std::string& list) {
  return setxattr(path.c_str(), kind, list.data(), list.size(), 0) == 0;
}

std::string listOf(const std::string& path) {
  std::string list(256, '\0');
  const ssize_t size = getxattr(path.c_str(), ACCESS_LIST, list.data(), list.size());
  return size < 0 ? "none" : list.substr(0, static_cast<std::size_t>(size));
}

class ReplacedFile : public testing::Test {
 protected:
  std::string file() const { return directory / "file"; }

  /// Gives the file the text "new" in a process in which one system call fails.
  void replaceWhereFails(long systemCall, int error) const {
    const std::string outcome = inChildProcess([&] {
      failSystemCall(systemCall, error);
      replaceFile(file(), "new");
      return "";
    });
    EXPECT_EQ(outcome, "");
  }

  vestra_test::TemporaryDirectory directory;
  vestra_test::TimeLimit limit;
};

TEST_F(ReplacedFile, NewFileHasTheText) {
  replaceFile(file(), "text");
  EXPECT_EQ(readFile(file()), "text");
  EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
}

TEST_F(ReplacedFile, NewFileHasThePermissionsThatTheProcessGives) {
  const mode_t before = umask(027);
  replaceFile(file(), "text");
  umask(before);
  EXPECT_EQ(statusOfFile(file()).st_mode & 07777U, 0640U);
}

TEST_F(ReplacedFile, OldTextStaysForAReaderThatHasOpenedIt) {
  writeFile(file(), "old text");
  const int reader = open(file().c_str(), O_RDONLY);
  replaceFile(file(), "new");
  char bytes[16] = "";
  EXPECT_EQ(read(reader, bytes, sizeof bytes), 8);
  EXPECT_STREQ(bytes, "old text");
  close(reader);
  EXPECT_EQ(readFile(file()), "new");
}

TEST_F(ReplacedFile, PermissionsStay) {
  writeFile(file(), "old");
  for (const mode_t mode : {0600U, 0755U, 0664U, 0444U}) {
    chmod(file().c_str(), mode);
    replaceFile(file(), "new");
    EXPECT_EQ(statusOfFile(file()).st_mode & 07777U, mode);
    EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
  }
}

TEST_F(ReplacedFile, OwnerStays) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a file away";
  }
  writeFile(file(), "old");
  ASSERT_EQ(chown(file().c_str(), 1234, 4321), 0);
  replaceFile(file(), "new");
  EXPECT_EQ(statusOfFile(file()).st_uid, 1234U);
  EXPECT_EQ(statusOfFile(file()).st_gid, 4321U);
  EXPECT_EQ(readFile(file()), "new");
}

TEST_F(ReplacedFile, GroupStays) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a file to any group";
  }
  writeFile(file(), "old text");
  ASSERT_EQ(chown(file().c_str(), static_cast<uid_t>(-1), 65534), 0);
  replaceFile(file(), "new");
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_EQ(statusOfFile(file()).st_gid, 65534U);
}

TEST_F(ReplacedFile, FileWithAnAccessListIsWrittenInPlace) {
  writeFile(file(), "old text");
  const std::string list = accessListFor(12345);
  if (!giveList(file(), ACCESS_LIST, list)) {
    GTEST_SKIP() << "the file system has no access lists";
  }
  const struct stat before = statusOfFile(file());
  replaceFile(file(), "new");
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_EQ(statusOfFile(file()).st_ino, before.st_ino);
  EXPECT_EQ(listOf(file()), list);
}

TEST_F(ReplacedFile, AccessListThatTheDirectoryGivesStays) {
  if (!giveList(directory.path(), DEFAULT_LIST, accessListFor(12345))) {
    GTEST_SKIP() << "the file system has no access lists";
  }
  writeFile(file(), "old text");
  const struct stat before = statusOfFile(file());
  const std::string list = listOf(file());
  replaceFile(file(), "new");
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_NE(statusOfFile(file()).st_ino, before.st_ino);
  EXPECT_EQ(listOf(file()), list);
}

TEST_F(ReplacedFile, HardLinkGetsTheTextToo) {
  writeFile(file(), "old");
  ASSERT_EQ(link(file().c_str(), (directory / "other").c_str()), 0);
  replaceFile(file(), "new");
  EXPECT_EQ(readFile(directory / "other"), "new");
  EXPECT_EQ(statusOfFile(file()).st_nlink, 2U);
}

TEST_F(ReplacedFile, SymbolicLinkIsFollowedAndKept) {
  writeFile(directory / "target", "old");
  makeLink(file(), directory / "target");
  replaceFile(file(), "new");
  EXPECT_EQ(readFile(directory / "target"), "new");
  EXPECT_TRUE(S_ISLNK(statusOfFile(file()).st_mode));
}

TEST_F(ReplacedFile, NamedPipeIsLeftAlone) {
  makeNamedPipe(file());
  replaceFile(file(), "text");
  EXPECT_TRUE(S_ISFIFO(statusOfFile(file()).st_mode));
}

TEST_F(ReplacedFile, ReadOnlyFileStaysAsItWas) {
  writeFile(file(), "old");
  const ScopedMode readOnly(file(), 0444);
  const ScopedMode everybodys(directory.path(), 0777);
  asOrdinaryUser([&] {
    replaceFile(file(), "new");
    return "";
  });
  EXPECT_EQ(readFile(file()), "old");
}

TEST_F(ReplacedFile, FileInAReadOnlyDirectoryIsWrittenInPlace) {
  writeFile(file(), "old");
  const ScopedMode everybodys(file(), 0666);
  const ScopedMode readOnly(directory.path(), 0555);
  asOrdinaryUser([&] {
    replaceFile(file(), "new");
    return "";
  });
  EXPECT_EQ(readFile(file()), "new");
}

TEST_F(ReplacedFile, NeighbourThatAKilledProcessLeftIsRemoved) {
  writeFile(directory / ".vestra-1-2.new", "half a te");
  replaceFile(file(), "text");
  EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
}

TEST_F(ReplacedFile, NeighbourThatALiveProcessWritesStays) {
  writeFile(directory / ".vestra-1-2.new", "half a te");
  const int writer = open((directory / ".vestra-1-2.new").c_str(), O_WRONLY);
  ASSERT_EQ(flock(writer, LOCK_EX), 0);
  replaceFile(file(), "text");
  EXPECT_EQ(readFile(directory / ".vestra-1-2.new"), "half a te");
  close(writer);
}

TEST_F(ReplacedFile, LinkOfANeighboursNameStays) {
  writeFile(directory / "target", "");
  makeLink(directory / ".vestra-1-2.new", directory / "target");
  replaceFile(file(), "text");
  EXPECT_EQ(namesIn(directory.path()), (std::vector<std::string>{".vestra-1-2.new", "file", "target"}));
}

// As on a file server.
TEST_F(ReplacedFile, WithoutLocksOnlyANeighbourOfMoreThanAnHourIsRemoved) {
  writeFile(directory / ".vestra-old.new", "half a te");
  writeFile(directory / ".vestra-young.new", "half a te");
  const auto now = std::chrono::system_clock::now();
  dateFile(directory / ".vestra-old.new", now - std::chrono::seconds(3700));
  dateFile(directory / ".vestra-young.new", now - std::chrono::seconds(3500));
  replaceWhereFails(SYS_fstatfs, ENOSYS);
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_EQ(namesIn(directory.path()), (std::vector<std::string>{".vestra-young.new", "file"}));
}

TEST_F(ReplacedFile, FileWhoseNeighbourIsLostEachTimeIsWrittenInPlace) {
  writeFile(file(), "old text");
  const struct stat before = statusOfFile(file());
  replaceWhereFails(SYS_rename, ENOENT);
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_EQ(statusOfFile(file()).st_ino, before.st_ino);
  EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
}

TEST_F(ReplacedFile, FileWhosePermissionsCannotBeGivenOnIsWrittenInPlace) {
  writeFile(file(), "old text");
  chmod(file().c_str(), 0751);
  const struct stat before = statusOfFile(file());
  replaceWhereFails(SYS_fchmod, EPERM);
  EXPECT_EQ(readFile(file()), "new");
  EXPECT_EQ(statusOfFile(file()).st_ino, before.st_ino);
  EXPECT_EQ(statusOfFile(file()).st_mode, before.st_mode);
}

TEST_F(ReplacedFile, FilesOfOtherNamesStay) {
  writeFile(directory / ".vestra-1-2", "");
  writeFile(directory / "vestra-1-2.new", "");
  replaceFile(file(), "text");
  EXPECT_EQ(namesIn(directory.path()).size(), 3U);
}

TEST_F(ReplacedFile, FileHoldsItsTextAndNoOther) {
  EXPECT_FALSE(fileHolds(file(), ""));
  writeFile(file(), "text");
  EXPECT_TRUE(fileHolds(file(), "text"));
  EXPECT_FALSE(fileHolds(file(), "tex"));
  EXPECT_FALSE(fileHolds(file(), "text "));
}

}  // namespace
}  // namespace Oza
