#include "design_tool/files/outbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <thread>

#include <boost/filesystem/operations.hpp>

#include "design_tool/diagnosis/diagnostic.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vestra_test::namesIn;
using vestra_test::readFile;

std::string kept(const Outbox& outbox, const std::string& name, const std::vector<KeptFile>& files) {
  return outbox.prepare(name, files)->publish().string();
}

TEST(Outbox, EachReportHasAFolderThatCountsUp) {
  const vestra_test::TemporaryDirectory directory;
  const Outbox outbox(directory / "deep/outbox");
  EXPECT_EQ(kept(outbox, "kelvo", {{"a", "1"}, {"b", std::string("\0", 1)}}),
            directory / "deep/outbox/0001-kelvo");
  EXPECT_EQ(kept(outbox, "tavlo", {{"a", "2"}}), directory / "deep/outbox/0002-tavlo");
  EXPECT_THAT(namesIn(directory / "deep/outbox"), ElementsAre("0001-kelvo", "0002-tavlo"));
  EXPECT_EQ(readFile(directory / "deep/outbox/0001-kelvo/b"), std::string("\0", 1));
  EXPECT_EQ(readFile(directory / "deep/outbox/0002-tavlo/a"), "2");
}

TEST(Outbox, AReportsNumberFollowsTheHighestThereIs) {
  const vestra_test::TemporaryDirectory directory;
  for (const char* name : {"0007-kelvo/x", "12-by-hand/x", ".0020/x", "notes/x", "-5/x"}) {
    vestra_test::writeFile(directory / name, "");
  }
  EXPECT_EQ(kept(Outbox(directory.path()), "kelvo", {}), directory / "0021-kelvo");
}

TEST(Outbox, ReportNumbersMayOutgrowFourDigits) {
  const vestra_test::TemporaryDirectory directory;
  vestra_test::writeFile(directory / "9999-kelvo/x", "");
  const Outbox outbox(directory.path());
  EXPECT_EQ(kept(outbox, "kelvo", {}), directory / "10000-kelvo");
  EXPECT_EQ(kept(outbox, "kelvo", {}), directory / "10001-kelvo");
}

TEST(Outbox, AFolderNameIsMadeAPlainWord) {
  const vestra_test::TemporaryDirectory directory;
  const Outbox outbox(directory.path());
  EXPECT_EQ(kept(outbox, "", {}), directory / "0001-report");
  EXPECT_EQ(kept(outbox, "../\n", {}), directory / "0002-report");
  EXPECT_EQ(kept(outbox, "../My_tool-2", {}), directory / "0003-My_tool-2");
}

TEST(Outbox, ACopyThatIsNotPublishedLeavesNothing) {
  const vestra_test::TemporaryDirectory directory;
  Outbox(directory.path()).prepare("kelvo", {{"a", "1"}});
  EXPECT_THAT(namesIn(directory.path()), IsEmpty());
}

/// The error that this ends with, as the tool prints it; "no error" when it does not.
std::string errorFrom(const std::function<void()>& action) {
  try {
    action();
    return "no error";
  } catch (const DiagnosedError& error) {
    return format(error.diagnostic());
  }
}

TEST(Outbox, TwoFilesOfOneNameAreNotKept) {
  const vestra_test::TemporaryDirectory directory;
  EXPECT_EQ(errorFrom([&] {
              kept(Outbox(directory.path()), "kelvo", {{"r", "1"}, {"r", "2"}});
            }),
            directory.path() + ": the outbox cannot keep two files named \"r\"\n");
  EXPECT_THAT(namesIn(directory.path()), IsEmpty());
}

TEST(Outbox, AFolderThatCannotBeWrittenLeavesNothing) {
  const vestra_test::TemporaryDirectory directory;
  EXPECT_EQ(errorFrom([&] {
              kept(Outbox(directory.path()), "kelvo", {{"a", "1"}, {"missing/b", "2"}});
            }),
            directory / ".0001/missing/b: cannot be written: No such file or directory\n");
  EXPECT_THAT(namesIn(directory.path()), IsEmpty());
}

TEST(Outbox, AFileInTheOutboxsPlaceIsAnError) {
  const vestra_test::TemporaryDirectory directory;
  vestra_test::writeFile(directory / "file", "");
  EXPECT_EQ(errorFrom([&] { Outbox(directory / "file"); }),
            directory / "file: the outbox cannot be made: Not a directory\n");
}

TEST(Outbox, AnOutboxThatHasGoneIsAnError) {
  const vestra_test::TemporaryDirectory directory;
  const Outbox outbox(directory / "outbox");
  boost::filesystem::remove(directory / "outbox");
  EXPECT_EQ(errorFrom([&] { kept(outbox, "kelvo", {}); }),
            directory / "outbox: the outbox cannot be written: No such file or directory\n");
}

TEST(Outbox, ManyReportsAtOnceGetANumberEach) {
  constexpr std::size_t WRITERS = 8;
  constexpr std::size_t REPORTS = 25;
  const vestra_test::TemporaryDirectory directory;
  std::vector<std::thread> writers;
  for (std::size_t writer = 0; writer < WRITERS; ++writer) {
    writers.emplace_back([&, writer] {
      for (std::size_t i = 0; i < REPORTS; ++i) {
        kept(Outbox(directory.path()), writer % 2 == 0 ? "kelvo" : "tavlo", {{"f", std::to_string(writer)}});
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
