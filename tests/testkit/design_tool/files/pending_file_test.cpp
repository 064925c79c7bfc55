#include "design_tool/files/pending_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using vestra_test::namesIn;
using vestra_test::readFile;

TEST(PendingFile, APendingFileAppearsWhenItIsCommitted) {
  const vestra_test::TemporaryDirectory directory;
  PendingFile file(directory / "f", "new");
  EXPECT_FALSE(vestra_test::exists(directory / "f"));
  file.commit();
  EXPECT_EQ(readFile(directory / "f"), "new");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST(PendingFile, APendingFileThatIsNotCommittedLeavesNoTrace) {
  const vestra_test::TemporaryDirectory directory;
  vestra_test::writeFile(directory / "f", "old");
  { const PendingFile file(directory / "f", "new"); }
  EXPECT_EQ(readFile(directory / "f"), "old");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST(PendingFile, APendingFileNeedsItsDirectory) {
  const vestra_test::TemporaryDirectory directory;
  try {
    const PendingFile file(directory / "none/f", "new");
    FAIL();
  } catch (const DiagnosedError& error) {
    EXPECT_EQ(error.diagnostic().file, directory / "none/f");
    EXPECT_EQ(error.diagnostic().message, "cannot be written: No such file or directory");
  }
}

TEST(PendingFile, APendingFileDoesNotReplaceADirectory) {
  const vestra_test::TemporaryDirectory directory;
  vestra_test::writeFile(directory / "d/f", "");
  {
    PendingFile file(directory / "d", "new");
    try {
      file.commit();
      FAIL();
    } catch (const DiagnosedError& error) {
      EXPECT_EQ(error.diagnostic().file, directory / "d");
      EXPECT_EQ(error.diagnostic().message, "cannot be written: Is a directory");
    }
  }
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("d"));
}

}  // namespace
}  // namespace vestra::design_tool
