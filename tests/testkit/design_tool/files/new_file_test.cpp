#include "design_tool/files/new_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <set>

#include <boost/filesystem/operations.hpp>

#include <fcntl.h>

#include "design_tool/files/descriptor.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using vestra_test::readFile;

class NewFile : public testing::Test {
 protected:
  int write(const std::string& name, const std::string& content) const {
    const Descriptor place(::open(directory.path().c_str(), O_RDONLY | O_DIRECTORY));
    return writeNewFile(place.get(), name, content);
  }

  const vestra_test::TemporaryDirectory directory;
};

TEST_F(NewFile, AllBytesOfANewFileAreWritten) {
  const std::string bytes = std::string(300'000, 'a') + std::string("\0\xFF", 2);
  EXPECT_EQ(write("f", bytes), 0);
  EXPECT_EQ(readFile(directory / "f"), bytes);
}

TEST_F(NewFile, AnExistingFileIsNotTouched) {
  vestra_test::writeFile(directory / "f", "old");
  EXPECT_EQ(write("f", "new"), EEXIST);
  EXPECT_EQ(readFile(directory / "f"), "old");
}

TEST_F(NewFile, APlantedLinkIsNotFollowed) {
  const vestra_test::TemporaryDirectory elsewhere;
  vestra_test::writeFile(elsewhere / "victim", "old");
  boost::filesystem::create_symlink(elsewhere / "victim", directory / "to_file");
  boost::filesystem::create_symlink(elsewhere / "none", directory / "dangling");
  EXPECT_EQ(write("to_file", "new"), EEXIST);
  EXPECT_EQ(write("dangling", "new"), EEXIST);
  EXPECT_EQ(readFile(elsewhere / "victim"), "old");
  EXPECT_FALSE(vestra_test::exists(elsewhere / "none"));
}

TEST(UnpredictableName, NoNameComesTwice) {
  std::set<std::string> names;
  for (int i = 0; i < 1000; ++i) {
    names.insert(unpredictableName());
  }
  EXPECT_EQ(names.size(), 1000u);
  EXPECT_THAT(*names.begin(), testing::MatchesRegex("\\.vestra-[0-9a-f]{16}"));
}

}  // namespace
}  // namespace vestra::design_tool
