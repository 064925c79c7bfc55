#include "files/overwrite.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>

#include <string>

#include "files/file_size_signal.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

using vestra_test::readFile;
using vestra_test::writeFile;

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

class OverwrittenFile : public testing::Test {
 protected:
  /// What a file that held one text holds after another was written.
  std::string overwritten(const std::string& before, const std::string& text) {
    writeFile(path, before);
    const Descriptor file(path, O_RDWR);
    overwrite(file, file.read(), text);
    return readFile(path);
  }

  vestra_test::TemporaryDirectory directory;
  std::string path = directory / "file";
};

TEST_F(OverwrittenFile, FileHoldsTheTextWhateverItsLength) {
  EXPECT_EQ(overwritten("", "text"), "text");
  EXPECT_EQ(overwritten("long text", "text"), "text");
  EXPECT_EQ(overwritten("te", "text"), "text");
  EXPECT_EQ(overwritten("text", ""), "");
}

TEST_F(OverwrittenFile, FileThatCouldNotBeReadIsCutToTheText) {
  writeFile(path, "a long text");
  EXPECT_TRUE(overwrite(Descriptor(path, O_WRONLY), std::nullopt, "text"));
  EXPECT_EQ(readFile(path), "text");
}

TEST_F(OverwrittenFile, TextThatFindsNoRoomLeavesTheOldOne) {
  const FileSizeSignalHold hold;
  writeFile(path, "ab");
  const ScopedFileSizeLimit three(3);
  EXPECT_FALSE(overwrite(Descriptor(path, O_RDWR), "ab", "xyz1"));
  EXPECT_EQ(readFile(path), "ab");
}

TEST_F(OverwrittenFile, TextThatFindsNoRoomInAnEmptyFileIsWrittenAsFarAsItGoes) {
  const FileSizeSignalHold hold;
  writeFile(path, "");
  const ScopedFileSizeLimit three(3);
  EXPECT_FALSE(overwrite(Descriptor(path, O_RDWR), "", "xyz1"));
  EXPECT_EQ(readFile(path), "xyz");
}

}  // namespace
}  // namespace Oza
