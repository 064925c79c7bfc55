// The table of corrupt identity files in docs/file-formats.md, row by row.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "identity/project_fixture.h"

namespace Oza {
namespace {

constexpr std::size_t MEGABYTE = 1048576;

class CorruptIdentity : public ProjectFixture {
 protected:
  bool loads() { return VestraProjectInfo(file(), &handler).loadOrCreate(); }

  std::string loadsForAnOrdinaryUser() {
    return asOrdinaryUser([&] { return loads() ? "true" : "false"; });
  }

  void expectNewProject() {
    VestraProjectInfo next(file(), &handler);
    EXPECT_TRUE(next.loadOrCreate());
    EXPECT_TRUE(isRandomUuid(next.getProjectId())) << next.getProjectId();
    EXPECT_EQ(next.getIteration(), 1U);
    EXPECT_EQ(identity(), "");
  }
};

constexpr const char* NOW = "1700000000";

enum class Send { IS_DUE, IS_NOT_DUE, IS_REFUSED };

TEST_F(CorruptIdentity, IsUsedAsFarAsItCanBeReadOrDeleted) {
  const std::string longIdentifier(MEGABYTE - 8, 'x');
  struct Row {
    const char* damage;
    std::string before;
    Send send;
    std::string identifier = {};
    std::uint64_t iteration = 1;
    std::string after = {};
    bool isReadAgain = true;
  };
  const Row rows[] = {
      {"empty", "", Send::IS_DUE, "", 1, identityText(NOW, "0", "2", "0", "")},
      {"cut after line 1", "1700000000\n", Send::IS_NOT_DUE, "", 1, identityText(NOW, "0", "2", "0", "")},
      {"cut after line 2", "1700000000\n5\n", Send::IS_NOT_DUE, "", 1, identityText(NOW, "5", "2", "0", "")},
      {"cut after line 3", "1\n2\n3\n", Send::IS_DUE, "", 3, identityText(NOW, "2", "4", "0", "")},
      {"cut after line 4", "1\n2\n3\n1\n", Send::IS_DUE, "", 3, identityText(NOW, "2", "4", "1", "")},
      {"line 5 without its end", "1\n2\n3\n0\nid", Send::IS_DUE, "id", 3,
       identityText(NOW, "2", "4", "0", "id")},
      {"empty lines", "\n2\n\n\nid\n", Send::IS_DUE, "id", 1, identityText(NOW, "2", "2", "0", "id")},
      {"a word as the first time", identityText("abc", "0", "1", "0", "id"), Send::IS_REFUSED},
      {"a word as the second time", identityText("0", "abc", "1", "0", "id"), Send::IS_REFUSED},
      {"a word as the iteration", identityText("0", "0", "abc", "0", "id"), Send::IS_REFUSED},
      {"a word as the flow", identityText("0", "0", "1", "abc", "id"), Send::IS_REFUSED},
      {"a lone carriage return", "\r\n\r\n", Send::IS_REFUSED},
      {"NUL bytes", std::string(4096, '\0'), Send::IS_REFUSED},
      {"a byte-order mark", "\xef\xbb\xbf" + identityText("0", "0", "1", "0", "id"), Send::IS_REFUSED},
      {"a megabyte of letters", std::string(MEGABYTE, 'x'), Send::IS_REFUSED},
      {"a lost first line", "0\n1\n0\nid\n", Send::IS_REFUSED},
      {"cut to a lone sign", "1600000000\n-", Send::IS_REFUSED},
      {"a flow above 32 bits", identityText("0", "0", "1", "2147483648", "id"), Send::IS_REFUSED},
      {"a time above 64 bits", identityText("9223372036854775808", "0", "1", "0", "id"), Send::IS_REFUSED},
      {"text behind numbers", identityText("12x", "1,000", "0x10", "0", "id"), Send::IS_DUE, "id", 0,
       identityText(NOW, "1", "1", "0", "id")},
      {"a time in the future", identityText("9223372036854775807", "0", "1", "0", "id"), Send::IS_NOT_DUE,
       "id", 1, identityText("9223372036854775807", "0", "2", "0", "id")},
      {"a negative time", identityText("-9223372036854775808", "0", "1", "0", "id"), Send::IS_DUE, "id", 1,
       identityText(NOW, "0", "2", "0", "id")},
      {"iteration -1", identityText("0", "0", "-1", "0", "id"), Send::IS_DUE, "id", 18446744073709551615U,
       identityText(NOW, "0", "0", "0", "id")},
      {"iteration -2", identityText("0", "0", "-2", "0", "id"), Send::IS_DUE, "id", 18446744073709551614U,
       identityText(NOW, "0", "18446744073709551615", "0", "id"), false},
      {"the highest iteration", identityText("0", "0", "9223372036854775807", "0", "id"), Send::IS_DUE, "id",
       9223372036854775807U, identityText(NOW, "0", "9223372036854775808", "0", "id"), false},
      {"flow 7", identityText("1", "2", "3", "7", "id"), Send::IS_DUE, "id", 3,
       identityText(NOW, "2", "4", "7", "id")},
      {"carriage returns", identityText("1\r", "2\r", "3\r", "0\r", "id\r"), Send::IS_DUE, "id\r", 3,
       identityText(NOW, "2", "4", "0", "id\r")},
      {"a NUL in line 5", identityText("1", "2", "3", "0", "i\0d"s), Send::IS_DUE, "i\0d"s, 3,
       identityText(NOW, "2", "4", "0", "i\0d"s)},
      {"more than five lines", identityText("1", "2", "3", "0", "id") + "more\nand more\n", Send::IS_DUE,
       "id", 3, identityText(NOW, "2", "4", "0", "id")},
      {"longer than a megabyte", identityText("1", "2", "3", "0", longIdentifier + "more"), Send::IS_DUE,
       longIdentifier, 3, identityText(NOW, "2", "4", "0", longIdentifier)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.damage);
    writeIdentity(row.before);
    VestraProjectInfo record(file(), &handler);
    EXPECT_EQ(record.loadOrCreate(), row.send != Send::IS_REFUSED);
    if (row.send == Send::IS_REFUSED) {
      EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});
      expectNewProject();
      continue;
    }
    EXPECT_TRUE(record.getProjectId() == row.identifier) << record.getProjectId().substr(0, 100);
    EXPECT_EQ(record.getIteration(), row.iteration);
    EXPECT_EQ(record.recordSendAttempt(), row.send == Send::IS_DUE);
    EXPECT_TRUE(identity() == row.after) << identity().substr(0, 100);
    EXPECT_EQ(loads(), row.isReadAgain);
  }
}

TEST_F(CorruptIdentity, IsDeletedEvenWhenTheHostHasAnIdentifier) {
  handler.addData("project_id", "host's own", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  writeIdentity("abc\n");
  EXPECT_FALSE(loads());
  EXPECT_FALSE(exists(file()));
}

TEST_F(CorruptIdentity, LosesOnlyALinkToIt) {
  writeFile(project / "target", "abc\n");
  makeLink(file(), project / "target");
  EXPECT_FALSE(loads());
  EXPECT_FALSE(exists(file()));
  EXPECT_EQ(readFile(project / "target"), "abc\n");
}

TEST_F(CorruptIdentity, StaysUnusableWhenItCannotBeDeleted) {
  writeIdentity("abc\n");
  const ScopedMode anybody(file(), 0666);
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  EXPECT_EQ(identity(), "abc\n");
}

TEST_F(CorruptIdentity, CutAnywhereIsUsedAndWrittenWholeAgain) {
  const std::string good =
      identityText("1600000000", "1500000000", "42", "1", "3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e");
  for (std::size_t length = 0; length <= good.size(); ++length) {
    writeIdentity(good.substr(0, length));
    VestraProjectInfo record(file(), &handler);
    ASSERT_TRUE(record.loadOrCreate()) << "length " << length;
    record.recordSendAttempt();
    VestraProjectInfo next(file(), &handler);
    EXPECT_TRUE(next.loadOrCreate()) << "length " << length;
    EXPECT_EQ(next.getIteration(), record.getIteration()) << "length " << length;
    EXPECT_EQ(next.getOrbeloFlow(), record.getOrbeloFlow()) << "length " << length;
    EXPECT_EQ(next.getProjectId(), record.getProjectId()) << "length " << length;
  }
}

struct Permissions {
  const char* name;
  const char* place;
  mode_t mode;
};

TEST_F(CorruptIdentity, IsLeftAloneWithoutPermission) {
  const std::string text = identityText("0", "0", "1", "0", "id");
  const Permissions rows[] = {{"file read-only", "vestra/.kelvo_vestrra.info", 0444},
                              {"file without permissions", "vestra/.kelvo_vestrra.info", 0000},
                              {"vestra not to be entered", "vestra", 0000}};
  writeIdentity(text);
  for (const Permissions& row : rows) {
    SCOPED_TRACE(row.name);
    {
      const ScopedMode changed(project / row.place, row.mode);
      EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
    }
    EXPECT_EQ(identity(), text);
  }
}

TEST_F(CorruptIdentity, IsEmptiedAndWrittenWhenItCanBeWrittenAndNotRead) {
  writeIdentity(identityText("0", "0", "42", "0", "id"));
  {
    const ScopedMode writeOnly(file(), 0222);
    EXPECT_EQ(loadsForAnOrdinaryUser(), "true");
  }
  EXPECT_EQ(identity(), "");
  {
    const ScopedMode writeOnly(file(), 0222);
    EXPECT_EQ(asOrdinaryUser([&] {
                VestraProjectInfo record(file(), &handler);
                record.loadOrCreate();
                return record.getProjectId() + (record.recordSendAttempt() ? "due" : "not due");
              }),
              "due");
  }
  EXPECT_EQ(identity(), identityText(NOW, "0", "2", "0", ""));
}

TEST_F(CorruptIdentity, IsNotUsedWhenItIsAPipeThatCanBeWrittenAndNotRead) {
  makeNamedPipe(file());
  const int reader = open(file().c_str(), O_RDONLY | O_NONBLOCK);
  const ScopedMode writeOnly(file(), 0222);
  EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
  close(reader);
}

TEST_F(CorruptIdentity, IsWrittenWhenTheUmaskMakesANewOneUnreadable) {
  const ScopedMode anybody(project.path(), 0777);
  EXPECT_EQ(asOrdinaryUser([&] {
              const mode_t before = umask(0444);
              VestraProjectInfo record(file(), &handler);
              const bool due = record.loadOrCreate() && record.recordSendAttempt();
              umask(before);
              return due ? "due" : "not due";
            }),
            "due");
  const ScopedMode enterable(project / "vestra", 0755);
  const ScopedMode readable(file(), 0644);
  EXPECT_THAT(identity(), MatchesRegex(identityText(NOW, "0", "2", "0", ANY_UUID)));
}

TEST_F(CorruptIdentity, CannotBeCreatedWithoutPermission) {
  const Permissions rows[] = {{"project read-only", "", 0555}, {"vestra read-only", "vestra", 0555}};
  for (const Permissions& row : rows) {
    SCOPED_TRACE(row.name);
    makeDirectory(project / row.place);
    const ScopedMode changed(project / row.place, row.mode);
    EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
    EXPECT_EQ(namesIn(project / row.place), std::vector<std::string>{});
  }
}

TEST_F(CorruptIdentity, CannotBeCreatedWhenADirectoryIsAFileOrALinkToNone) {
  const std::string place = project / "vestra";
  for (const std::string& target : {place, project / "missing"}) {
    makeLink(place, target);
    EXPECT_FALSE(loads()) << target;
    unlink(place.c_str());
  }
  writeFile(place, "");
  EXPECT_FALSE(loads());
  EXPECT_EQ(readFile(place), "");
  handler.setProjectDirectory(place);
  EXPECT_FALSE(handler.setupVestraInfo());
}

TEST_F(CorruptIdentity, CannotBeUsedWhenSomethingElseIsInItsPlace) {
  std::vector<Obstacle> rows = obstacles();
  // The process's own memory is a regular file whose first byte cannot be read.
  rows.push_back({"a read error", [](const std::string& path) { makeLink(path, "/proc/self/mem"); }});
  for (const Obstacle& obstacle : rows) {
    SCOPED_TRACE(obstacle.name);
    const TemporaryDirectory directory;
    const std::string path = directory / "vestra/.kelvo_vestrra.info";
    obstacle.put(path);
    EXPECT_FALSE(VestraProjectInfo(path, &handler).loadOrCreate());
    EXPECT_TRUE(exists(path));
  }
}

TEST_F(CorruptIdentity, IsAnEmptyOneWhenADeviceIsInItsPlace) {
  for (const char* device : {"/dev/null", "/dev/zero"}) {
    SCOPED_TRACE(device);
    unlink(file().c_str());
    makeLink(file(), device);
    VestraProjectInfo record(file(), &handler);
    EXPECT_TRUE(record.loadOrCreate());
    EXPECT_EQ(record.getProjectId(), "");
    EXPECT_EQ(record.getIteration(), 1U);
  }
}

TEST_F(CorruptIdentity, IsCreatedWhereALinkLeads) {
  makeLink(file(), project / "elsewhere");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  record.recordSendAttempt();
  EXPECT_EQ(readFile(project / "elsewhere"), identityText(NOW, "0", "2", "0", record.getProjectId()));
}

TEST_F(CorruptIdentity, BlocksNoAttemptWhenItHasBecomeANamedPipe) {
  VestraProjectInfo record(file(), &handler);
  ASSERT_TRUE(record.loadOrCreate());
  unlink(file().c_str());
  makeNamedPipe(file());
  EXPECT_TRUE(record.recordSendAttempt());
}

}  // namespace
}  // namespace Oza
