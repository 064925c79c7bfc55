#include "design_tool/files/outbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>

#include <boost/filesystem/operations.hpp>

#include "support/files.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vestra_test::namesIn;
using vestra_test::readFile;

class OutboxTest : public testing::Test {
 protected:
  std::string keep(const std::string& name) const {
    return Outbox(directory.path()).keep(name, {{"f", ""}}).filename().string();
  }

  const vestra_test::TemporaryDirectory directory;
};

TEST_F(OutboxTest, HasAFolderForEachReport) {
  const Outbox outbox(directory / "deep/outbox");
  outbox.keep("kelvo", {{"a", "1"}, {"b", std::string("\0", 1)}});
  EXPECT_EQ(outbox.keep("tavlo", {{"a", "2"}}), directory / "deep/outbox/0002-tavlo");
  EXPECT_THAT(namesIn(directory / "deep/outbox"), ElementsAre("0001-kelvo", "0002-tavlo"));
  EXPECT_THAT(namesIn(directory / "deep/outbox/0001-kelvo"), ElementsAre("a", "b"));
  EXPECT_EQ(readFile(directory / "deep/outbox/0001-kelvo/b"), std::string("\0", 1));
  EXPECT_EQ(readFile(directory / "deep/outbox/0002-tavlo/a"), "2");
}

TEST_F(OutboxTest, CountsOnFromTheHighestNumber) {
  const std::pair<const char*, const char*> rows[] = {{"0007-kelvo", "0008-n"},
                                                      {"notes", "0009-n"},
                                                      {"-50", "0010-n"},
                                                      {".0020-x", "0021-n"},
                                                      {"9998-by-hand", "9999-n"},
                                                      {"2147483647-x", "10000-n"},
                                                      {"99999999999999999999-x", "10001-n"}};
  for (const auto& [planted, next] : rows) {
    boost::filesystem::create_directory(directory / planted);
    EXPECT_EQ(keep("n"), next) << planted;
  }
}

TEST_F(OutboxTest, MakesItsNamesPlainWords) {
  EXPECT_EQ(keep(""), "0001-report");
  EXPECT_EQ(keep("../\n"), "0002-report");
  EXPECT_EQ(keep("../My_tool-2"), "0003-My_tool-2");
}

TEST_F(OutboxTest, HasNoFolderOfAReportThatCannotBeWritten) {
  const std::string error = errorIn(directory.path(), [&] {
    Outbox(directory.path()).keep("kelvo", {{"a", "1"}, {"missing/b", "2"}});
  });
  EXPECT_EQ(error, "the outbox cannot be written: " + (directory / ".0001-kelvo/missing/b") +
                       ": cannot be written: No such file or directory");
  EXPECT_THAT(namesIn(directory.path()), IsEmpty());
}

TEST_F(OutboxTest, IsADirectoryThatStays) {
  vestra_test::writeFile(directory / "file", "");
  EXPECT_EQ(errorIn(directory / "file", [&] { Outbox(directory / "file"); }),
            "the outbox cannot be created: Not a directory");
  const Outbox outbox(directory / "outbox");
  boost::filesystem::remove(directory / "outbox");
  EXPECT_EQ(errorIn(directory / "outbox", [&] { outbox.keep("kelvo", {}); }),
            "the outbox cannot be written: No such file or directory");
}

TEST_F(OutboxTest, GivesEachOfManyReportsAtOnceItsNumber) {
  constexpr std::size_t WRITERS = 8;
  constexpr std::size_t REPORTS = 25;
  std::vector<std::thread> writers;
  for (std::size_t writer = 0; writer < WRITERS; ++writer) {
    writers.emplace_back([&, writer] {
      for (std::size_t i = 0; i < REPORTS; ++i) {
        keep(writer % 2 == 0 ? "kelvo" : "tavlo");
      }
    });
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  std::set<std::string> numbers;
  for (const std::string& name : namesIn(directory.path())) {
    numbers.insert(name.substr(0, name.find('-')));
  }
  EXPECT_EQ(numbers.size(), WRITERS * REPORTS);
  EXPECT_EQ(namesIn(directory.path()).size(), WRITERS * REPORTS);
}

}  // namespace
}  // namespace vestra::design_tool
