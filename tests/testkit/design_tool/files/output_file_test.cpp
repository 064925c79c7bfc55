#include "design_tool/files/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <boost/filesystem/operations.hpp>

#include <sys/resource.h>
#include <sys/stat.h>

#include "support/files.h"
#include "support/scoped_current_directory.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::writeFile;

/// A root with a directory "d" and a regular file "f" below it.
class OutputFile : public testing::Test {
 protected:
  OutputFile() {
    writeFile(root / "f", "old");
    boost::filesystem::create_directory(root / "d");
    boost::filesystem::create_symlink("d", root / "way");
  }

  std::string errorAt(const std::string& path) const {
    return errorIn(path, [&] { checkOutput(path, root.path()); });
  }

  const vestra_test::TemporaryDirectory root;
};

TEST_F(OutputFile, LiesBelowTheRootAndIsRegularOrAbsent) {
  const vestra_test::TemporaryDirectory outside;
  boost::filesystem::create_symlink(outside.path(), root / "way_out");
  boost::filesystem::create_symlink(root / "f", root / "link");
  boost::filesystem::create_symlink(root / "none", root / "dangling");
  ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
  const std::string isOutside = "does not lie below the directory of vestra_init, \"" + root.path() + "\"";
  const std::string isMissing = "cannot be written: No such file or directory";
  const std::pair<std::string, std::string> rows[] = {
      {root / "new", "no error"},
      {root / "d/new", "no error"},
      {root / "way/new", "no error"},
      {root / "f", "no error"},
      {root / "d", "is a directory, not a file"},
      {root / "d/..", "is a directory, not a file"},
      {root / "d/", "cannot be written: Is a directory"},
      {root / "link", "is a link, which is not followed"},
      {root / "dangling", "is a link, which is not followed"},
      {root / "pipe", "is not a regular file"},
      {outside / "f", isOutside},
      {root / "../f", isOutside},
      {root.path() + "_sibling", isOutside},
      {root / "way_out/f", isOutside},
      {"/dev/null", isOutside},
      {root / "none/f", isMissing},
  };
  for (const auto& [path, error] : rows) {
    EXPECT_EQ(errorAt(path), error) << path;
  }
}

TEST_F(OutputFile, MayBeRelativeAndItsRootALink) {
  const vestra_test::ScopedCurrentDirectory here(root.path());
  EXPECT_EQ(errorAt("new"), "no error");
  EXPECT_EQ(errorAt("./d/../new"), "no error");
  EXPECT_EQ(errorIn("d/new", [] { checkOutput("d/new", "way/"); }), "no error");
  replaceFile("new", "text");
  EXPECT_EQ(readFile(root / "new"), "text");
}

TEST_F(OutputFile, IsTheSameWhateverPathLeadsThere) {
  boost::filesystem::create_hard_link(root / "f", root / "second_name");
  EXPECT_TRUE(isSameFile(root / "new", root / "./d/../new"));
  EXPECT_TRUE(isSameFile(root / "d/new", root / "way/new"));
  EXPECT_TRUE(isSameFile(root / "f", root / "second_name"));
  EXPECT_FALSE(isSameFile(root / "new", root / "d/new"));
  EXPECT_FALSE(isSameFile(root / "new", root / "newer"));
}

TEST_F(OutputFile, IsReplacedWithAllItsBytes) {
  const std::string bytes = std::string(300'000, 'a') + std::string("\0\xFF", 2);
  boost::filesystem::create_hard_link(root / "f", root / "kept");
  replaceFile(root / "f", bytes);
  EXPECT_EQ(readFile(root / "f"), bytes);
  EXPECT_EQ(readFile(root / "kept"), "old");
  EXPECT_THAT(namesIn(root.path()), ElementsAre("d", "f", "kept", "way"));
}

TEST_F(OutputFile, StaysAsItWasWhenItCannotBeWritten) {
  const struct Restored {
    Restored() {
      ::getrlimit(RLIMIT_FSIZE, &limits);
      ::signal(SIGXFSZ, SIG_IGN);
    }
    ~Restored() { ::setrlimit(RLIMIT_FSIZE, &limits); }
    struct rlimit limits = {};
  } restored;
  const struct rlimit small = {100, restored.limits.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_EQ(errorIn(root / "f", [&] { replaceFile(root / "f", std::string(200, 'a')); }),
            "cannot be written: File too large");
  EXPECT_EQ(readFile(root / "f"), "old");
  EXPECT_EQ(errorIn(root / "d", [&] { replaceFile(root / "d", "text"); }),
            "cannot be written: Is a directory");
  EXPECT_THAT(namesIn(root.path()), ElementsAre("d", "f", "way"));
}

}  // namespace
}  // namespace vestra::design_tool
