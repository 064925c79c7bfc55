#include "files/file_lock.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "support/child_process.h"
#include "support/files.h"
#include "support/lock_holder.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using vestra_test::LockHolder;

class Lock : public testing::Test {
 protected:
  Lock() { vestra_test::writeFile(path, "text"); }

  bool takes(LockKind kind) {
    const Descriptor file(path, O_RDWR);
    return lockFile(file, kind, timeBudget);
  }

  bool anotherProcessTakesIt() {
    return vestra_test::inChildProcess([&] { return takes(LockKind::EXCLUSIVE) ? "true" : "false"; }) ==
           "true";
  }

  vestra_test::TemporaryDirectory directory;
  std::string path = directory / "file";
  TimeBudget timeBudget;
  vestra_test::TimeLimit limit;
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

TEST_F(Lock, IsNotTakenOfADevice) {
  path = "/dev/null";
  EXPECT_FALSE(takes(LockKind::EXCLUSIVE));
}

}  // namespace
}  // namespace Oza
