#include "files/open_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using vestra_test::asOrdinaryUser;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::readFile;
using vestra_test::ScopedLocale;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

constexpr std::ios_base::openmode FOR_READING = std::ios_base::in;
constexpr std::ios_base::openmode FOR_WRITING = std::ios_base::out | std::ios_base::trunc;
constexpr std::ios_base::openmode FOR_APPENDING = std::ios_base::out | std::ios_base::app;
constexpr std::ios_base::openmode FOR_BOTH = std::ios_base::in | std::ios_base::out;

class OpenFile : public testing::Test {
 protected:
  bool opens(const std::string& name, std::ios_base::openmode mode) const {
    std::fstream file;
    openFile(file, directory / name, mode);
    return file.is_open();
  }

  std::string opensForAnOrdinaryUser(const std::string& name, std::ios_base::openmode mode) const {
    return asOrdinaryUser([&] { return opens(name, mode) ? "open" : "closed"; });
  }

  vestra_test::TemporaryDirectory directory;
  vestra_test::TimeLimit limit;
};

TEST_F(OpenFile, RegularFileOpensEveryWay) {
  writeFile(directory / "file", "text");
  EXPECT_TRUE(opens("file", FOR_READING));
  EXPECT_TRUE(opens("file", FOR_BOTH));
  EXPECT_TRUE(opens("file", FOR_APPENDING));
  EXPECT_EQ(readFile(directory / "file"), "text");
  EXPECT_TRUE(opens("file", FOR_WRITING));
  EXPECT_EQ(readFile(directory / "file"), "");
}

TEST_F(OpenFile, LinkToARegularFileOpens) {
  writeFile(directory / "file", "text");
  makeLink(directory / "link", directory / "file");
  EXPECT_TRUE(opens("link", FOR_READING));
  EXPECT_TRUE(opens("link", FOR_APPENDING));
}

TEST_F(OpenFile, MissingFileIsMadeForWritingOnly) {
  EXPECT_FALSE(opens("reading", FOR_READING));
  EXPECT_FALSE(opens("both", FOR_BOTH));
  EXPECT_TRUE(opens("writing", FOR_WRITING));
  EXPECT_TRUE(opens("appending", FOR_APPENDING));
  EXPECT_EQ(vestra_test::namesIn(directory.path()), (std::vector<std::string>{"appending", "writing"}));
}

TEST_F(OpenFile, MissingDirectoryOpensNoWay) {
  EXPECT_FALSE(opens("missing/file", FOR_READING));
  EXPECT_FALSE(opens("missing/file", FOR_WRITING));
}

TEST_F(OpenFile, DirectoryOpensNoWay) {
  makeDirectory(directory / "directory");
  EXPECT_FALSE(opens("directory", FOR_READING));
  EXPECT_FALSE(opens("directory", FOR_BOTH));
  EXPECT_FALSE(opens("directory", FOR_WRITING));
  EXPECT_FALSE(opens("directory", FOR_APPENDING));
}

TEST_F(OpenFile, NamedPipeIsNotWaitedFor) {
  makeNamedPipe(directory / "pipe");
  EXPECT_FALSE(opens("pipe", FOR_READING));
  EXPECT_FALSE(opens("pipe", FOR_BOTH));
  EXPECT_FALSE(opens("pipe", FOR_WRITING));
  EXPECT_FALSE(opens("pipe", FOR_APPENDING));
}

TEST_F(OpenFile, LinkToANamedPipeIsNotWaitedFor) {
  makeNamedPipe(directory / "pipe");
  makeLink(directory / "link", "pipe");
  EXPECT_FALSE(opens("link", FOR_READING));
  EXPECT_FALSE(opens("link", FOR_WRITING));
}

TEST_F(OpenFile, SocketOpensNoWay) {
  makeSocket(directory / "socket");
  EXPECT_FALSE(opens("socket", FOR_READING));
  EXPECT_FALSE(opens("socket", FOR_WRITING));
}

TEST_F(OpenFile, DanglingLinkIsFilledByWriting) {
  makeLink(directory / "link", directory / "target");
  EXPECT_FALSE(opens("link", FOR_READING));
  EXPECT_TRUE(opens("link", FOR_WRITING));
  EXPECT_EQ(readFile(directory / "target"), "");
}

TEST_F(OpenFile, LinkToItselfOpensNoWay) {
  makeLink(directory / "loop", "loop");
  EXPECT_FALSE(opens("loop", FOR_READING));
  EXPECT_FALSE(opens("loop", FOR_WRITING));
}

TEST_F(OpenFile, DeviceIsWrittenToAndNotRead) {
  makeLink(directory / "null", "/dev/null");
  makeLink(directory / "zero", "/dev/zero");
  EXPECT_FALSE(opens("null", FOR_READING));
  EXPECT_FALSE(opens("zero", FOR_READING));
  EXPECT_FALSE(opens("zero", FOR_BOTH));
  EXPECT_TRUE(opens("null", FOR_WRITING));
  EXPECT_TRUE(opens("zero", FOR_WRITING));
}

TEST_F(OpenFile, FileWithoutPermissionsOpensNoWay) {
  writeFile(directory / "file", "text");
  const ScopedMode none(directory / "file", 0000);
  EXPECT_EQ(opensForAnOrdinaryUser("file", FOR_READING), "closed");
  EXPECT_EQ(opensForAnOrdinaryUser("file", FOR_WRITING), "closed");
}

TEST_F(OpenFile, FileInADirectoryThatNobodyMayEnterOpensNoWay) {
  writeFile(directory / "shut/file", "text");
  const ScopedMode none(directory / "shut", 0000);
  EXPECT_EQ(opensForAnOrdinaryUser("shut/file", FOR_READING), "closed");
  EXPECT_EQ(opensForAnOrdinaryUser("shut/file", FOR_WRITING), "closed");
}

TEST_F(OpenFile, HostsLocaleGroupsNoDigits) {
  const ScopedLocale grouping(vestra_test::digitGroupingLocale());
  {
    std::ofstream file;
    openFile(file, directory / "file", std::ios_base::trunc);
    file << 1234567;
  }
  EXPECT_EQ(readFile(directory / "file"), "1234567");
}

TEST_F(OpenFile, HostsLocaleConvertsNoBytes) {
  const ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  {
    std::ofstream file;
    openFile(file, directory / "file", std::ios_base::trunc);
    file << "Mixed Case";
  }
  std::ifstream file;
  openFile(file, directory / "file", std::ios_base::in);
  std::string text;
  std::getline(file, text);
  EXPECT_EQ(text, "Mixed Case");

  std::ifstream unguarded(directory / "file");
  std::getline(unguarded, text);
  EXPECT_EQ(text, "mIXED cASE") << "the locale of this test converts nothing";
}

}  // namespace
}  // namespace Oza
