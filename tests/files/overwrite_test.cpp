#include "files/overwrite.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <cerrno>

#include "files/sigxfsz_guard.h"
#include "support/test.h"

namespace Oza {
namespace {

/// The process's limit of file sizes, for a while.
class ScopedFileSizeLimit {
 public:
  explicit ScopedFileSizeLimit(rlim_t most) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limits{most, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limits);
  }
  ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
  ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;
  ~ScopedFileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }

 private:
  rlimit before{};
};

class OverwrittenFile : public Test {
 protected:
  /// What a file that held one text holds after another was written.
  std::string overwritten(const std::string& before, const std::string& text) {
    writeFile(path, before);
    const Descriptor file(path, O_RDWR);
    overwrite(file, file.read().value(), text);
    return readFile(path);
  }

  TemporaryDirectory directory;
  std::string path = directory / "file";
};

TEST_F(OverwrittenFile, HoldsTheTextWhateverItsLength) {
  EXPECT_EQ(overwritten("", "text"), "text");
  EXPECT_EQ(overwritten("long text", "text"), "text");
  EXPECT_EQ(overwritten("te", "text"), "text");
  EXPECT_EQ(overwritten("text", ""), "");
}

TEST_F(OverwrittenFile, ThatWasReadInPartIsCutToTheText) {
  writeFile(path, "a long text");
  EXPECT_TRUE(overwrite(Descriptor(path, O_RDWR), "a", "text"));
  EXPECT_EQ(readFile(path), "text");
}

TEST_F(OverwrittenFile, KeepsTheOldTextWhenTheNewOneExceedsTheSizeLimit) {
  const SigxfszGuard guard;
  writeFile(path, "old text");
  const ScopedFileSizeLimit three(3);
  EXPECT_FALSE(overwrite(Descriptor(path, O_RDWR), "old text", "new text"));
  EXPECT_EQ(readFile(path), "old text");
}

TEST_F(OverwrittenFile, TakesATextThatIsAsLongAsTheSizeLimit) {
  const ScopedFileSizeLimit three(3);
  EXPECT_EQ(overwritten("", "new"), "new");
}

TEST_F(OverwrittenFile, GetsTheOldTextBackAfterAShortWrite) {
  writeFile(path, "old");
  const std::string outcome = inChildProcess([&] {
    const SigxfszGuard guard;
    const ScopedFileSizeLimit four(4);
    // Asking for the limit fails, which passes no new one.
    failSystemCall(SYS_prlimit64, EPERM, 0);
    return overwrite(Descriptor(path, O_RDWR), "old", "new text") ? "written" : "put back";
  });
  EXPECT_EQ(outcome, "put back");
  EXPECT_EQ(readFile(path), "old");
}

TEST_F(OverwrittenFile, IsNotTouchedWhenTheTextExceedsTheSizeLimit) {
  const SigxfszGuard guard;
  writeFile(path, "");
  const ScopedFileSizeLimit three(3);
  EXPECT_FALSE(overwrite(Descriptor(path, O_RDWR), "", "text"));
  EXPECT_EQ(readFile(path), "");
}

}  // namespace
}  // namespace Oza
