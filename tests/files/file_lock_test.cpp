#include "files/file_lock.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>

#include "support/files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// A process that holds an exclusive lock, and how it goes on.
class Holder {
 public:
  explicit Holder(const std::string& path) {
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    process = fork();
    if (process == 0) {
      const int file = open(path.c_str(), O_RDWR);
      const bool locked = flock(file, LOCK_EX) == 0;
      static_cast<void>(write(ready[1], locked ? "l" : "x", 1) == 1);
      for (;;) {
        pause();
      }
    }
    char word = ' ';
    EXPECT_EQ(read(ready[0], &word, 1), 1);
    EXPECT_EQ(word, 'l');
    close(ready[0]);
    close(ready[1]);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  ~Holder() { end(); }

  void stop() {
    kill(process, SIGSTOP);
    waitpid(process, nullptr, WUNTRACED);
  }

  void end() {
    if (process > 0) {
      kill(process, SIGKILL);
      waitpid(process, nullptr, 0);
      process = 0;
    }
  }

 private:
  pid_t process = 0;
};

class Lock : public testing::Test {
 protected:
  Lock() { vestra_test::writeFile(path, "text"); }

  vestra_test::TemporaryDirectory directory;
  std::string path = directory / "file";
  TimeBudget timeBudget;
  vestra_test::TimeLimit limit;
};

TEST_F(Lock, FreeFileIsLockedAtOnce) {
  const Descriptor file(path, O_RDWR);
  EXPECT_TRUE(FileLock(file, FileLock::EXCLUSIVE, timeBudget).isHeld());
}

TEST_F(Lock, SharedLocksDoNotExcludeEachOther) {
  const Descriptor one(path, O_RDWR);
  const Descriptor other(path, O_RDWR);
  const FileLock first(one, FileLock::SHARED, timeBudget);
  EXPECT_TRUE(FileLock(other, FileLock::SHARED, timeBudget).isHeld());
  EXPECT_FALSE(FileLock(other, FileLock::EXCLUSIVE, timeBudget).isHeld());
}

TEST_F(Lock, EndOfTheObjectUnlocksEvenForACopyOfTheDescriptor) {
  const Descriptor one(path, O_RDWR);
  const int copy = dup(one.get());
  { const FileLock first(one, FileLock::EXCLUSIVE, timeBudget); }
  const Descriptor other(path, O_RDWR);
  EXPECT_TRUE(FileLock(other, FileLock::EXCLUSIVE, timeBudget).isHeld());
  close(copy);
}

TEST_F(Lock, StoppedHolderIsWaitedForUpToTheBoundInAll) {
  Holder holder(path);
  holder.stop();
  const Descriptor file(path, O_RDWR);
  const auto begin = steady_clock::now();
  EXPECT_FALSE(FileLock(file, FileLock::SHARED, timeBudget).isHeld());
  EXPECT_GE(steady_clock::now() - begin, milliseconds(250));
  const auto second = steady_clock::now();
  EXPECT_FALSE(FileLock(file, FileLock::EXCLUSIVE, timeBudget).isHeld());
  EXPECT_LT(steady_clock::now() - second, milliseconds(250));
}

TEST_F(Lock, KilledHolderLeavesNoLock) {
  Holder holder(path);
  holder.end();
  const Descriptor file(path, O_RDWR);
  EXPECT_TRUE(FileLock(file, FileLock::EXCLUSIVE, timeBudget).isHeld());
}

TEST_F(Lock, FileThatIsNotOpenIsNotLocked) {
  const Descriptor file(directory / "missing", O_RDWR);
  EXPECT_FALSE(FileLock(file, FileLock::EXCLUSIVE, timeBudget).isHeld());
}

TEST_F(Lock, LocalFileSystemAnswersAtOnce) {
  EXPECT_TRUE(answersLocksAtOnce(Descriptor(path, O_RDONLY).get()));
}

}  // namespace
}  // namespace Oza
