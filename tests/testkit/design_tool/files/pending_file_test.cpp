#include "design_tool/files/pending_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>

#include "design_tool/diagnosis/diagnostic.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::writeFile;

/// A directory with a place for a file "f".
class PendingFileTest : public testing::Test {
 protected:
  OutputPlace place() const { return OutputPlace(directory / "f", directory.path()); }

  const vestra_test::TemporaryDirectory directory;
};

TEST_F(PendingFileTest, APendingFileAppearsWhenItIsCommitted) {
  const OutputPlace target = place();
  PendingFile file(target, "new");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre(MatchesRegex("\\.vestra-[0-9a-f]{16}")));
  file.commit();
  EXPECT_EQ(readFile(directory / "f"), "new");
  file.keep();
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST_F(PendingFileTest, APendingFileReplacesTheOneThatWasThere) {
  writeFile(directory / "f", "old");
  const OutputPlace target = place();
  {
    PendingFile file(target, "new");
    file.commit();
    file.keep();
  }
  EXPECT_EQ(readFile(directory / "f"), "new");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST_F(PendingFileTest, APendingFileThatIsNotCommittedLeavesNoTrace) {
  writeFile(directory / "f", "old");
  const OutputPlace target = place();
  { const PendingFile file(target, "new"); }
  EXPECT_EQ(readFile(directory / "f"), "old");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST_F(PendingFileTest, ACommittedFileThatIsNotKeptIsTakenBack) {
  const OutputPlace target = place();
  { PendingFile(target, "new").commit(); }
  EXPECT_THAT(namesIn(directory.path()), ElementsAre());
  writeFile(directory / "f", "old");
  { PendingFile(target, "new").commit(); }
  EXPECT_EQ(readFile(directory / "f"), "old");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("f"));
}

TEST_F(PendingFileTest, ADirectoryThatTakesTheNameIsNotFollowedElsewhere) {
  const vestra_test::TemporaryDirectory elsewhere;
  boost::filesystem::create_directory(directory / "d");
  const OutputPlace target(directory / "d/f", directory.path());
  boost::filesystem::rename(directory / "d", directory / "moved");
  boost::filesystem::create_symlink(elsewhere.path(), directory / "d");
  PendingFile file(target, "new");
  file.commit();
  file.keep();
  EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre());
  EXPECT_EQ(readFile(directory / "moved/f"), "new");
}

}  // namespace
}  // namespace vestra::design_tool
