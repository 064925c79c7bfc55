#include "files/file_lock.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>

#include "support/file_holders.h"
#include "support/interposed/file_calls.h"
#include "support/test.h"

namespace Oza {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Lock : public Test {
 protected:
  Lock() { writeFile(path, "text"); }

  bool takes(LockKind kind) {
    const Descriptor file(path, O_RDWR);
    return lockFile(file, kind, timeBudget);
  }

  bool anotherProcessTakesIt() {
    return inChildProcess([&] { return takes(LockKind::EXCLUSIVE) ? "true" : "false"; }) == "true";
  }

  TemporaryDirectory directory;
  std::string path = directory / "file";
  TimeBudget timeBudget;
  TimeLimit limit;
};

TEST_F(Lock, OfAFreeFileIsTakenAtOnce) { EXPECT_TRUE(takes(LockKind::EXCLUSIVE)); }

TEST_F(Lock, IsSharedByReaders) {
  const LockHolder reader(path, F_RDLCK);
  EXPECT_TRUE(takes(LockKind::SHARED));
  EXPECT_FALSE(takes(LockKind::EXCLUSIVE));
}

TEST_F(Lock, OfAWriterKeepsReadersOut) {
  const LockHolder writer(path, F_WRLCK);
  EXPECT_FALSE(takes(LockKind::SHARED));
}

TEST_F(Lock, LastsUntilItIsEnded) {
  const Descriptor file(path, O_RDWR);
  ASSERT_TRUE(lockFile(file, LockKind::EXCLUSIVE, timeBudget));
  EXPECT_FALSE(anotherProcessTakesIt());
  unlockFile(file);
  EXPECT_TRUE(anotherProcessTakesIt());
}

TEST_F(Lock, LastsUntilTheFileIsClosedEvenForACopyOfTheDescriptor) {
  int copy = -1;
  {
    const Descriptor file(path, O_RDWR);
    copy = dup(file.get());
    ASSERT_TRUE(lockFile(file, LockKind::EXCLUSIVE, timeBudget));
  }
  EXPECT_TRUE(anotherProcessTakesIt());
  close(copy);
}

TEST_F(Lock, OfAStoppedProcessIsWaitedForUpToTheBudgetInAll) {
  const LockHolder holder(path, F_WRLCK);
  holder.stop();
  const auto begin = steady_clock::now();
  EXPECT_FALSE(takes(LockKind::SHARED));
  EXPECT_GE(steady_clock::now() - begin, milliseconds(250));
  const auto second = steady_clock::now();
  EXPECT_FALSE(takes(LockKind::EXCLUSIVE));
  EXPECT_LT(steady_clock::now() - second, milliseconds(250));
}

TEST_F(Lock, EndsWithItsProcess) {
  const LockHolder holder(path, F_WRLCK);
  holder.killAlone();
  EXPECT_TRUE(takes(LockKind::EXCLUSIVE));
}

TEST_F(Lock, EndsWithItsProcessEvenWhenAForkedChildLivesOn) {
  const LockHolder holder(path, F_WRLCK, true);
  holder.killAlone();
  EXPECT_TRUE(takes(LockKind::EXCLUSIVE));
}

TEST_F(Lock, IsNotTakenOfAFileThatIsNotOpen) {
  path = directory / "missing";
  EXPECT_FALSE(takes(LockKind::EXCLUSIVE));
}

// In the order of docs/operations.md, "Network file systems".
TEST_F(Lock, IsNotTakenOnAFileSystemWhoseLocksMayBlock) {
  const struct {
    const char* name;
    std::uint32_t type;
  } rows[] = {
      {"NFS", 0x6969},
      {"SMB", 0x517B},
      {"SMB 2", 0xFE534D42},
      {"CIFS", 0xFF534D42},
      {"NCP", 0x564C},
      {"9P", 0x01021997},
      {"AFS", 0x5346414F},
      {"the kernel's AFS", 0x6B414653},
      {"Coda", 0x73757245},
      {"Ceph", 0x00C36400},
      {"Lustre", 0x0BD00BD0},
      {"GPFS", 0x47504653},
      {"BeeGFS", 0x19830326},
      {"OrangeFS", 0x20030528},
      {"PanFS", 0xAAD7AAEA},
      {"GFS2", 0x01161970},
      {"OCFS2", 0x7461636F},
      {"FUSE", 0x65735546},
      {"shared folders of a virtual machine", 0x786F4256},
      {"shared folders of another one", 0xBACBACBC},
  };
  for (const auto& row : rows) {
    const ScopedFileSystem fileSystem(row.type);
    EXPECT_FALSE(takes(LockKind::EXCLUSIVE)) << row.name;
  }
  const ScopedFileSystem ext4(0xEF53);
  EXPECT_TRUE(takes(LockKind::EXCLUSIVE));
}

TEST_F(Lock, IsNotTakenOnAFileSystemThatCannotBeTold) {
  EXPECT_EQ(inChildProcess([&] {
              failSystemCall(SYS_fstatfs, EIO);
              return std::string(takes(LockKind::EXCLUSIVE) ? "taken" : "not taken");
            }),
            "not taken");
}

TEST_F(Lock, IsNotTakenOfADevice) {
  path = "/dev/null";
  EXPECT_FALSE(takes(LockKind::EXCLUSIVE));
}

}  // namespace
}  // namespace Oza
