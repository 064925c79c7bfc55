#include "files/replace_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>

#include "reliability/sanitized.h"
#include "support/test.h"

namespace Oza {
namespace {

struct stat statusOfFile(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status;
}

mode_t modeOfFile(const std::string& path) { return statusOfFile(path).st_mode & 07777U; }

constexpr char ACCESS_ACL[] = "system.posix_acl_access";
constexpr char DEFAULT_ACL[] = "system.posix_acl_default";

/// An ACL as the kernel keeps it, little-endian, by which one more user may write.
std::string aclFor(std::uint32_t user) {
  struct Entry {
    std::uint16_t tag;
    std::uint16_t permissions;
    std::uint32_t id;
  };
  constexpr std::uint32_t version = 2;
  constexpr std::uint32_t nobody = 0xFFFFFFFF;
  const Entry entries[] = {
      {1, 6, nobody}, {2, 6, user}, {4, 4, nobody}, {0x10, 6, nobody}, {0x20, 4, nobody}};
  return std::string(reinterpret_cast<const char*>(&version), sizeof version) +
         std::string(reinterpret_cast<const char*>(entries), sizeof entries);
}

bool setAcl(const std::string& path, const char* kind, const std::string& acl) {
  return setxattr(path.c_str(), kind, acl.data(), acl.size(), 0) == 0;
}

std::string aclOf(const std::string& path) {
  std::string acl(256, '\0');
  const ssize_t size = getxattr(path.c_str(), ACCESS_ACL, acl.data(), acl.size());
  return size < 0 ? "none" : acl.substr(0, static_cast<std::size_t>(size));
}

std::string permissionsOf(const std::string& path) {
  const struct stat status = statusOfFile(path);
  return std::to_string(status.st_uid) + " " + std::to_string(status.st_gid) + " " +
         std::to_string(status.st_mode) + " " + aclOf(path);
}

/// Leaves the process no more than a number of free descriptors.
void leaveDescriptors(rlim_t count) {
  const int lowest = dup(0);
  close(lowest);
  rlimit limits{};
  getrlimit(RLIMIT_NOFILE, &limits);
  limits.rlim_cur = static_cast<rlim_t>(lowest) + count;
  setrlimit(RLIMIT_NOFILE, &limits);
}

/// Lets nobody else open the file without waiting for this process.
bool lease(const std::string& path) {
  std::signal(SIGIO, SIG_IGN);
  const int holder = open(path.c_str(), O_RDONLY);
  return fcntl(holder, F_SETLEASE, F_RDLCK) == 0;
}

class ReplacedFile : public Test {
 protected:
  void SetUp() override { writeFile(file(), "old text"); }

  std::string file() const { return directory / "file"; }

  /// Gives the file the text "new" and says how that was done.
  std::string replace() const {
    const struct stat before = statusOfFile(file());
    const std::string permissions = permissionsOf(file());
    replaceFile(file(), "new");
    return std::string(readFile(file()) == "new" ? "" : "not ") +
           (statusOfFile(file()).st_ino == before.st_ino ? "written in place" : "renamed") +
           (permissionsOf(file()) == permissions ? "" : ", other permissions");
  }

  /// The same in a process in which one system call fails.
  std::string replaceWhereFails(long systemCall, int error) const {
    return inChildProcess([&] {
      failSystemCall(systemCall, error);
      return replace();
    });
  }

  TemporaryDirectory directory;
  TimeLimit limit;
};

TEST_F(ReplacedFile, IsMadeWithThePermissionsThatTheProcessGives) {
  unlink(file().c_str());
  const mode_t before = umask(027);
  replaceFile(file(), "text");
  umask(before);
  EXPECT_EQ(readFile(file()), "text");
  EXPECT_EQ(modeOfFile(file()), 0640U);
}

TEST_F(ReplacedFile, KeepsItsOldTextForAReaderThatHasOpenedIt) {
  const int reader = open(file().c_str(), O_RDONLY);
  EXPECT_EQ(replace(), "renamed");
  char bytes[16] = "";
  EXPECT_EQ(read(reader, bytes, sizeof bytes), 8);
  EXPECT_STREQ(bytes, "old text");
  close(reader);
}

TEST_F(ReplacedFile, IsRenamedOverOrWrittenInPlaceAndKeepsItsPermissions) {
  const struct {
    const char* old;
    std::function<void()> prepare;
    const char* how;
  } rows[] = {
      {"private", [&] { chmod(file().c_str(), 0600); }, "renamed"},
      {"executable", [&] { chmod(file().c_str(), 0755); }, "renamed"},
      {"for the group", [&] { chmod(file().c_str(), 0664); }, "renamed"},
      {"with a hard link", [&] { EXPECT_EQ(link(file().c_str(), (directory / "hard").c_str()), 0); },
       "written in place"},
      {"a symbolic link",
       [&] {
         rename(file().c_str(), (directory / "target").c_str());
         makeLink(file(), "target");
       },
       "written in place"},
      // The sanitizers open pipes to look at memory.
      {"where one descriptor is left", [] { leaveDescriptors(SANITIZED ? 4 : 1); }, "renamed"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.old);
    unlink(file().c_str());
    writeFile(file(), "old text");
    EXPECT_EQ(inChildProcess([&] {
                row.prepare();
                const std::vector<std::string> names = namesIn(directory.path());
                return replace() + (namesIn(directory.path()) == names ? "" : ", other names");
              }),
              row.how);
  }
}

TEST_F(ReplacedFile, TakesStaleTemporaryFilesAwayAndNoOthers) {
  writeFile(directory / ".vestra-1-2.new", "half a te");
  writeFile(directory / ".vestra-1-3.new", "half a te");
  dateFile(directory / ".vestra-1-2.new", std::chrono::system_clock::now() - std::chrono::seconds(3700));
  EXPECT_EQ(replace(), "renamed");
  EXPECT_EQ(namesIn(directory.path()), (std::vector<std::string>{".vestra-1-3.new", "file"}));
}

TEST_F(ReplacedFile, IsWrittenInPlaceWhereASystemCallFails) {
  const struct {
    const char* name;
    long number;
    int error;
  } rows[] = {
      {"lgetxattr", SYS_lgetxattr, EIO},
      {"fgetxattr", SYS_fgetxattr, EIO},
      {"fchmod", SYS_fchmod, EPERM},
      {"rename", SYS_rename, ENOENT},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(replaceWhereFails(row.number, row.error), "written in place");
    EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
  }
}

TEST_F(ReplacedFile, IsRenamedOverWhereItsFileSystemHasNoAcls) {
  EXPECT_EQ(replaceWhereFails(SYS_lgetxattr, EOPNOTSUPP), "renamed");
  EXPECT_EQ(replaceWhereFails(SYS_lgetxattr, ENODATA), "renamed");
}

// Nor is it opened: that would fail until the holder has given the lease back.
TEST_F(ReplacedFile, IsRenamedOverWhileAnotherProcessHoldsALease) {
  const std::string how = inChildProcess([&] { return lease(file()) ? replace() : "no lease"; });
  if (how == "no lease") {
    GTEST_SKIP() << "the file system has no leases";
  }
  EXPECT_EQ(how, "renamed");
}

TEST_F(ReplacedFile, IsWrittenInPlaceWhenItHasAnotherGroupOrOnlyRootMayWrite) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root may write a read-only file and give one to any group";
  }
  chmod(file().c_str(), 0444);
  EXPECT_EQ(replace(), "written in place");
  chmod(file().c_str(), 0644);
  ASSERT_EQ(chown(file().c_str(), static_cast<uid_t>(-1), 65534), 0);
  EXPECT_EQ(replace(), "written in place");
}

/// Files and directories with ACLs.
class ReplacedFileWithAcl : public ReplacedFile {
 protected:
  void SetUp() override {
    ReplacedFile::SetUp();
    if (!setAcl(directory.path(), DEFAULT_ACL, aclFor(12345))) {
      GTEST_SKIP() << "the file system has no ACLs";
    }
  }
};

TEST_F(ReplacedFileWithAcl, DoesNotInheritOne) {
  for (const mode_t mode : {0600U, 0644U, 0664U}) {
    chmod(file().c_str(), mode);
    EXPECT_EQ(replace(), "renamed");
    EXPECT_EQ(aclOf(file()), "none");
  }
}

TEST_F(ReplacedFileWithAcl, InheritsOneWhenItIsNewAndKeepsTheOneThatItHas) {
  unlink(file().c_str());
  replaceFile(file(), "old text");
  EXPECT_NE(aclOf(file()), "none");
  EXPECT_EQ(replace(), "renamed");
  ASSERT_TRUE(setAcl(file(), ACCESS_ACL, aclFor(54321)));
  EXPECT_EQ(replace(), "renamed");
}

TEST_F(ReplacedFileWithAcl, IsWrittenInPlaceWhereItCannotBeSetOrRemoved) {
  EXPECT_EQ(replaceWhereFails(SYS_fremovexattr, EPERM), "written in place");
  ASSERT_TRUE(setAcl(file(), ACCESS_ACL, aclFor(54321)));
  EXPECT_EQ(replaceWhereFails(SYS_fsetxattr, EPERM), "written in place");
}

// What it inherits would let others open it for writing before the ACL is removed.
TEST_F(ReplacedFileWithAcl, IsPrivateUntilItHasItsPermissions) {
  inChildProcess([&] {
    failSystemCall(SYS_unlink, EPERM);
    return replaceWhereFails(SYS_fremovexattr, EPERM);
  });
  const std::vector<std::string> names = namesIn(directory.path());
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(modeOfFile(directory / names[0]), 0600U);
}

/// A file of root's, and a user whom permissions stop.
class ReplacedFileOfAnotherOwner : public ReplacedFile {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can make files for two users";
    }
    ReplacedFile::SetUp();
    chmod(directory.path().c_str(), 0777);
  }

  std::string replaceAsOrdinaryUser() const {
    return asOrdinaryUser([&] {
      umask(022);
      return replace();
    });
  }
};

TEST_F(ReplacedFileOfAnotherOwner, BecomesOurs) {
  for (const mode_t mode : {0644U, 0666U, 0600U}) {
    unlink(file().c_str());
    writeFile(file(), "old text");
    chmod(file().c_str(), mode);
    asOrdinaryUser([&] {
      umask(022);
      replaceFile(file(), "new");
      return "";
    });
    EXPECT_EQ(readFile(file()), "new");
    EXPECT_EQ(statusOfFile(file()).st_uid, 65534U);
    EXPECT_EQ(modeOfFile(file()), 0644U);
    EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
  }
}

TEST_F(ReplacedFileOfAnotherOwner, BecomesRootsForRoot) {
  ASSERT_EQ(chown(file().c_str(), 1234, 4321), 0);
  EXPECT_EQ(replace(), "renamed, other permissions");
  EXPECT_EQ(statusOfFile(file()).st_uid, 0U);
  EXPECT_EQ(statusOfFile(file()).st_gid, 0U);
}

TEST_F(ReplacedFileOfAnotherOwner, LeavesTheOldTextToItsHardLinks) {
  ASSERT_EQ(link(file().c_str(), (directory / "hard").c_str()), 0);
  EXPECT_EQ(replaceAsOrdinaryUser(), "renamed, other permissions");
  EXPECT_EQ(readFile(directory / "hard"), "old text");
}

TEST_F(ReplacedFileOfAnotherOwner, IsReplacedEvenWhenItIsAPipe) {
  unlink(file().c_str());
  makeNamedPipe(file());
  asOrdinaryUser([&] {
    replaceFile(file(), "new");
    return "";
  });
  EXPECT_TRUE(S_ISREG(statusOfFile(file()).st_mode));
}

TEST_F(ReplacedFileOfAnotherOwner, IsWrittenInPlaceOrLeftWhereItCannotBeRenamedOver) {
  const struct {
    mode_t directory;
    mode_t file;
    const char* how;
  } rows[] = {
      {01777, 0644, "not written in place"},
      {01777, 0666, "written in place"},
      {0755, 0644, "not written in place"},
      {0755, 0666, "written in place"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(Message() << std::oct << row.directory << " " << row.file);
    writeFile(file(), "old text");
    chmod(directory.path().c_str(), row.directory);
    chmod(file().c_str(), row.file);
    EXPECT_EQ(replaceAsOrdinaryUser(), row.how);
    EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
  }
}

TEST_F(ReplacedFile, StaysAsItIsWhenItIsOurOwnAndReadOnly) {
  const ScopedMode everybodys(directory.path(), 0777);
  unlink(file().c_str());
  EXPECT_EQ(asOrdinaryUser([&] {
              writeFile(file(), "old text");
              chmod(file().c_str(), 0444);
              return replace();
            }),
            "not written in place");
  EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{"file"});
}

TEST_F(ReplacedFile, StaysANamedPipe) {
  unlink(file().c_str());
  makeNamedPipe(file());
  replaceFile(file(), "text");
  EXPECT_TRUE(S_ISFIFO(statusOfFile(file()).st_mode));
}

TEST(FileHolds, ItsTextAndNoOther) {
  const TemporaryDirectory directory;
  const std::string file = directory / "file";
  EXPECT_FALSE(fileHolds(file, ""));
  writeFile(file, "text");
  for (const char* other : {"", "tex", "text ", "Text"}) {
    EXPECT_FALSE(fileHolds(file, other)) << other;
  }
  EXPECT_TRUE(fileHolds(file, "text"));
  // More than there is memory.
  ASSERT_EQ(truncate(file.c_str(), off_t{1} << 40), 0);
  EXPECT_FALSE(fileHolds(file, "text"));
}

}  // namespace
}  // namespace Oza
