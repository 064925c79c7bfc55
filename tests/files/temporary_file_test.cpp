#include "files/temporary_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <ctime>

#include "support/test.h"

namespace Oza {
namespace {

class TemporaryFileTest : public Test {
 protected:
  static std::string prefix() { return ".vestra-" + std::to_string(getpid()) + "-"; }

  /// Takes the names that the next temporary files of this process would have.
  void takeNames(int count) const {
    std::string name;
    {
      const TemporaryFile last(target, 0666);
      name = namesIn(directory.path()).front();
    }
    const int counter = std::stoi(name.substr(prefix().size()));
    for (int next = 1; next <= count; ++next) {
      writeFile(directory / (prefix() + std::to_string(counter + next) + ".new"), "");
    }
  }

  TemporaryDirectory directory;
  std::string target = directory / "file";
  TimeLimit limit;
};

TEST_F(TemporaryFileTest, HasANameOfProcessAndCounterUntilItIsRenamed) {
  TemporaryFile temporary(target, 0666);
  temporary.file().write("text");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre(MatchesRegex("\\" + prefix() + "[0-9]+\\.new")));
  EXPECT_TRUE(temporary.renameToTarget());
  EXPECT_EQ(readFile(target), "text");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("file"));
}

TEST_F(TemporaryFileTest, IsRemovedUnlessItIsRenamed) {
  { const TemporaryFile temporary(target, 0666); }
  EXPECT_THAT(namesIn(directory.path()), IsEmpty());
}

TEST_F(TemporaryFileTest, StaysTheTargetOnceItIsRenamed) {
  {
    TemporaryFile temporary(target, 0666);
    temporary.renameToTarget();
  }
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("file"));
}

TEST_F(TemporaryFileTest, PassesTakenNamesOver) {
  takeNames(99);
  const TemporaryFile temporary(target, 0666);
  EXPECT_TRUE(temporary.file().isOpen());
  EXPECT_THAT(namesIn(directory.path()), SizeIs(100));
}

TEST_F(TemporaryFileTest, IsGivenUpAfterAHundredTakenNames) {
  takeNames(100);
  EXPECT_FALSE(TemporaryFile(target, 0666).file().isOpen());
  EXPECT_THAT(namesIn(directory.path()), SizeIs(100));
}

TEST_F(TemporaryFileTest, IsNotMadeInAMissingDirectory) {
  target = directory / "missing/file";
  TemporaryFile temporary(target, 0666);
  EXPECT_FALSE(temporary.file().isOpen());
  EXPECT_FALSE(temporary.renameToTarget());
}

class StaleFile : public Test {
 protected:
  static constexpr std::time_t NOW = 1'800'000'000;

  void date(const std::string& name, std::time_t age) const {
    dateFile(directory / name, std::chrono::system_clock::from_time_t(NOW - age));
  }

  bool isRemoved(const std::string& name, std::time_t age) const {
    date(name, age);
    removeStaleTemporaryFiles(directory / "", NOW);
    return !exists(directory / name);
  }

  TemporaryDirectory directory;
};

TEST_F(StaleFile, IsOneOfMoreThanAnHour) {
  const struct {
    std::time_t age;
    bool isStale;
  } rows[] = {{-100'000, false}, {0, false}, {3599, false}, {3600, false}, {3601, true}, {1'000'000, true}};
  for (const auto& row : rows) {
    writeFile(directory / ".vestra-1-2.new", "half a te");
    EXPECT_EQ(isRemoved(".vestra-1-2.new", row.age), row.isStale) << row.age;
  }
}

TEST_F(StaleFile, HasExactlyATemporaryName) {
  const struct {
    const char* name;
    bool isStale;
  } rows[] = {
      {".vestra-1-2.new", true},       {".vestra-4194304-4294967295.new", true},
      {".vestra-mine.new", false},     {".vestra-.new", false},
      {".vestra--2.new", false},       {".vestra-1-.new", false},
      {".vestra-1.new", false},        {".vestra-1-2-3.new", false},
      {".vestra-1-b.new", false},      {".vestra-a-2.new", false},
      {".vestra-1-2", false},          {".vestra-1-2.newer", false},
      {".vestra-1-2.new.orig", false}, {"vestra-1-2.new", false},
      {"my.vestra-1-2.new", false},
  };
  for (const auto& row : rows) {
    writeFile(directory / row.name, "");
    EXPECT_EQ(isRemoved(row.name, 4000), row.isStale) << row.name;
  }
}

TEST_F(StaleFile, IsARegularFile) {
  writeFile(directory / "target", "");
  date("target", 4000);
  makeLink(directory / ".vestra-1-1.new", "target");
  makeNamedPipe(directory / ".vestra-1-2.new");
  makeDirectory(directory / ".vestra-1-3.new");
  makeSocket(directory / ".vestra-1-4.new");
  for (const char* name : {".vestra-1-1.new", ".vestra-1-2.new", ".vestra-1-3.new", ".vestra-1-4.new"}) {
    EXPECT_FALSE(isRemoved(name, 4000)) << name;
  }
}

TEST_F(StaleFile, IsNotLookedForAmongAllOfVeryManyNames) {
  constexpr std::size_t PLANTED = 2000;
  for (std::size_t number = 0; number < PLANTED; ++number) {
    const std::string name = ".vestra-1-" + std::to_string(number) + ".new";
    writeFile(directory / name, "");
    date(name, 4000);
  }
  removeStaleTemporaryFiles(directory / "", NOW);
  const std::size_t left = namesIn(directory.path()).size();
  EXPECT_GT(left, PLANTED - 700);
  EXPECT_LT(left, PLANTED - 300);
}

}  // namespace
}  // namespace Oza
