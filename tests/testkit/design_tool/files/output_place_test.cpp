#include "design_tool/files/output_place.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>

#include <sys/stat.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "support/files.h"
#include "support/scoped_current_directory.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using vestra_test::writeFile;

/// A root with a directory "d" and a regular file "f" below it.
class OutputPlaceTest : public testing::Test {
 protected:
  OutputPlaceTest() {
    writeFile(root / "f", "");
    boost::filesystem::create_directory(root / "d");
  }

  std::string errorAt(const std::string& path) const {
    try {
      const OutputPlace place(path, root.path());
      return "no error";
    } catch (const DiagnosedError& error) {
      EXPECT_EQ(error.diagnostic().file, path);
      return error.diagnostic().message;
    }
  }

  bool isSame(const std::string& a, const std::string& b) const {
    return OutputPlace(a, root.path()).isSameAs(OutputPlace(b, root.path()));
  }

  const vestra_test::TemporaryDirectory root;
};

TEST_F(OutputPlaceTest, AnAbsentAndARegularFileAreAccepted) {
  EXPECT_EQ(errorAt(root / "new"), "no error");
  EXPECT_EQ(errorAt(root / "d/new"), "no error");
  EXPECT_EQ(errorAt(root / "f"), "no error");
}

TEST_F(OutputPlaceTest, AnOutputThatIsNoRegularFileIsRefused) {
  boost::filesystem::create_symlink(root / "f", root / "link");
  boost::filesystem::create_symlink(root / "none", root / "dangling");
  ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorAt(root / "d"), "is a directory, not a file");
  EXPECT_EQ(errorAt(root / "d/.."), "is a directory, not a file");
  EXPECT_EQ(errorAt(root / "link"), "is a link, which is not followed");
  EXPECT_EQ(errorAt(root / "dangling"), "is a link, which is not followed");
  EXPECT_EQ(errorAt(root / "pipe"), "is not a regular file");
  EXPECT_EQ(errorAt(root / "d/"), "cannot be written: No such file or directory");
}

TEST_F(OutputPlaceTest, AnOutputOutsideTheRootIsRefused) {
  const vestra_test::TemporaryDirectory outside;
  const std::string message = "does not lie below the directory of vestra_init, \"" + root.path() + "\"";
  boost::filesystem::create_symlink(outside.path(), root / "way_out");
  EXPECT_EQ(errorAt(outside / "f"), message);
  EXPECT_EQ(errorAt(root / "../f"), message);
  EXPECT_EQ(errorAt(root / "way_out/f"), message);
  EXPECT_EQ(errorAt("/dev/null"), message);
}

TEST_F(OutputPlaceTest, AnOutputInAMissingDirectoryIsRefused) {
  EXPECT_EQ(errorAt(root / "none/f"), "cannot be written: No such file or directory");
}

TEST_F(OutputPlaceTest, ARootMayBeReachedByALinkOrByDots) {
  const vestra_test::TemporaryDirectory other;
  boost::filesystem::create_symlink(root.path(), other / "to_root");
  EXPECT_EQ(errorAt(other / "to_root/d/new"), "no error");
  const vestra_test::ScopedCurrentDirectory here(root.path());
  EXPECT_EQ(errorAt("new"), "no error");
  EXPECT_EQ(errorAt("./d/../new"), "no error");
}

TEST_F(OutputPlaceTest, OnePlaceIsTheSameWhateverPathLeadsThere) {
  boost::filesystem::create_symlink("d", root / "way");
  boost::filesystem::create_hard_link(root / "f", root / "second_name");
  EXPECT_TRUE(isSame(root / "new", root / "./d/../new"));
  EXPECT_TRUE(isSame(root / "d/new", root / "way/new"));
  EXPECT_TRUE(isSame(root / "f", root / "second_name"));
  EXPECT_FALSE(isSame(root / "new", root / "d/new"));
  EXPECT_FALSE(isSame(root / "new", root / "newer"));
}

TEST_F(OutputPlaceTest, AFileThatIsReadIsRecognised) {
  boost::filesystem::create_symlink(root / "f", root / "link");
  const OutputPlace place(root / "f", root.path());
  EXPECT_TRUE(place.isSameAs(identityOf(root / "link")));
  EXPECT_FALSE(place.isSameAs(identityOf(root / "none")));
  EXPECT_FALSE(OutputPlace(root / "new", root.path()).isSameAs(identityOf(root / "none")));
}

}  // namespace
}  // namespace vestra::design_tool
