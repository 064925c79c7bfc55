// The table of corrupt identity files in docs/file-formats.md, row by row.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "identity/project_fixture.h"
#include "identity/vestra_project_info.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/special_files.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using namespace std::string_literals;
using vestra_test::asOrdinaryUser;
using vestra_test::exists;
using vestra_test::isRandomUuid;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

constexpr std::size_t MEGABYTE = 1048576;

class CorruptIdentity : public vestra_test::ProjectFixture {
 protected:
  bool loads() { return VestraProjectInfo(file(), &handler).loadOrCreate(); }

  std::string loadsForAnOrdinaryUser() {
    return asOrdinaryUser([&] { return loads() ? "true" : "false"; });
  }
};

struct UnreadableNumbers {
  const char* name;
  std::string text;
};

TEST_F(CorruptIdentity, IsDeletedAndNewAtTheNextRunWhenANumberIsUnreadable) {
  const UnreadableNumbers rows[] = {
      {"a word for the first time", "abc\n0\n1\n0\nid\n"},
      {"a word for the second time", "0\nabc\n1\n0\nid\n"},
      {"a word for the iteration", "0\n0\nabc\n0\nid\n"},
      {"a word for the flow", "0\n0\n1\nabc\nid\n"},
      {"a time above 64 bits", "9223372036854775808\n0\n1\n0\nid\n"},
      {"a time below 64 bits", "0\n-9223372036854775809\n1\n0\nid\n"},
      {"an iteration above signed 64 bits", "0\n0\n9223372036854775808\n0\nid\n"},
      {"a flow far above 32 bits", "0\n0\n1\n3000000000\nid\n"},
      {"a flow above 32 bits", "0\n0\n1\n2147483648\nid\n"},
      {"a flow below 32 bits", "0\n0\n1\n-2147483649\nid\n"},
      {"a line of blanks", " \n0\n1\n0\nid\n"},
      {"empty lines with DOS line ends", "\r\n\r\n"},
      {"NUL bytes", std::string(4096, '\0')},
      {"binary",
       "\x7f"
       "ELF\0\xff\xfe\n\n\n"s},
      {"digits of another script", "\xd9\xa1\xd9\xa2\n0\n1\n0\nid\n"},
      {"a byte-order mark",
       "\xef\xbb\xbf"
       "0\n0\n1\n0\nid\n"},
      {"a megabyte of letters", std::string(MEGABYTE, 'x')},
      {"a megabyte of digits", std::string(MEGABYTE, '9')},
      {"the first line lost, so that the identifier stands for the flow", "0\n1\n0\nid\n"},
      {"cut to a lone sign", "1600000000\n-"},
  };
  for (const UnreadableNumbers& row : rows) {
    SCOPED_TRACE(row.name);
    writeIdentity(row.text);
    EXPECT_FALSE(loads());
    EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});

    VestraProjectInfo next(file(), &handler);
    EXPECT_TRUE(next.loadOrCreate());
    EXPECT_TRUE(isRandomUuid(next.getProjectId())) << next.getProjectId();
    EXPECT_EQ(next.getIteration(), 1U);
    EXPECT_EQ(identity(), "");
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

struct UsableRecord {
  const char* name;
  std::string before;
  std::string identifier;
  std::uint64_t iteration;
  bool due;
  std::string after;
};

TEST_F(CorruptIdentity, IsUsedAsFarAsItCanBeRead) {
  const UsableRecord rows[] = {
      {"empty", "", "", 1, true, "1700000000\n0\n2\n0\n\n"},
      {"cut after line 2", "1700000000\n5\n", "", 1, false, "1700000000\n5\n2\n0\n\n"},
      {"cut after line 4", "1\n2\n3\n1\n", "", 3, true, "1700000000\n2\n4\n1\n\n"},
      {"line 5 without its end", "1\n2\n3\n0\nid", "id", 3, true, "1700000000\n2\n4\n0\nid\n"},
      {"empty lines", "\n2\n\n\nid\n", "id", 1, true, "1700000000\n2\n2\n0\nid\n"},
      {"text behind numbers", "12x\n1,000\n0x10\n0\nid\n", "id", 0, true, "1700000000\n1\n1\n0\nid\n"},
      {"a time in the future", "9223372036854775807\n0\n1\n0\nid\n", "id", 1, false,
       "9223372036854775807\n0\n2\n0\nid\n"},
      {"a negative time", "-9223372036854775808\n0\n1\n0\nid\n", "id", 1, true, "1700000000\n0\n2\n0\nid\n"},
      {"iteration -1", "0\n0\n-1\n0\nid\n", "id", 18446744073709551615U, true, "1700000000\n0\n0\n0\nid\n"},
      {"the highest iteration", "0\n0\n9223372036854775807\n0\nid\n", "id", 9223372036854775807U, true,
       "1700000000\n0\n9223372036854775808\n0\nid\n"},
      {"flow 7", "1\n2\n3\n7\nid\n", "id", 3, true, "1700000000\n2\n4\n7\nid\n"},
      {"DOS line ends", "1\r\n2\r\n3\r\n0\r\nid\r\n", "id\r", 3, true, "1700000000\n2\n4\n0\nid\r\n"},
      {"a NUL in line 5", "1\n2\n3\n0\ni\0d\n"s, "i\0d"s, 3, true, "1700000000\n2\n4\n0\ni\0d\n"s},
      {"more than five lines", "1\n2\n3\n0\nid\nmore\nand more\n", "id", 3, true,
       "1700000000\n2\n4\n0\nid\n"},
      {"longer than a megabyte", "1\n2\n3\n0\n" + std::string(MEGABYTE, 'x') + "\n",
       std::string(MEGABYTE - 8, 'x'), 3, true,
       "1700000000\n2\n4\n0\n" + std::string(MEGABYTE - 8, 'x') + "\n"},
  };
  for (const UsableRecord& row : rows) {
    SCOPED_TRACE(row.name);
    writeIdentity(row.before);
    VestraProjectInfo record(file(), &handler);
    EXPECT_TRUE(record.loadOrCreate());
    EXPECT_TRUE(record.getProjectId() == row.identifier) << record.getProjectId().substr(0, 100);
    EXPECT_EQ(record.getIteration(), row.iteration);
    EXPECT_EQ(record.recordSendAttempt(), row.due);
    EXPECT_TRUE(identity() == row.after) << identity().substr(0, 100);
  }
}

TEST_F(CorruptIdentity, CutAnywhereIsUsedAndWrittenWholeAgain) {
  const std::string good = "1600000000\n-1600000000\n42\n1\n3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  const std::string loneSign = "1600000000\n-";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    if (length == loneSign.size()) {
      continue;
    }
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

struct Obstacle {
  const char* name;
  std::function<void(const std::string& path, const std::string& root)> put;
};

TEST_F(CorruptIdentity, CannotBeUsedWhenSomethingElseIsInItsPlace) {
  const Obstacle rows[] = {
      {"a directory", [](const auto& path, const auto&) { makeDirectory(path); }},
      {"a named pipe", [](const auto& path, const auto&) { makeNamedPipe(path); }},
      {"a link to a named pipe",
       [](const auto& path, const auto& root) {
         makeNamedPipe(root + "/pipe");
         makeLink(path, root + "/pipe");
       }},
      {"a socket", [](const auto& path, const auto&) { makeSocket(path); }},
      {"a link to itself", [](const auto& path, const auto&) { makeLink(path, ".kelvo_vestrra.info"); }},
      {"a link into a missing directory",
       [](const auto& path, const auto& root) { makeLink(path, root + "/missing/elsewhere"); }},
      // The process's own memory is a regular file whose first byte cannot be read.
      {"a read error", [](const auto& path, const auto&) { makeLink(path, "/proc/self/mem"); }},
  };
  for (const Obstacle& row : rows) {
    SCOPED_TRACE(row.name);
    const vestra_test::TemporaryDirectory directory;
    const std::string path = directory / "vestra/.kelvo_vestrra.info";
    row.put(path, directory.path());
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

TEST_F(CorruptIdentity, IsNewWhenALinkLeadsNowhere) {
  makeLink(file(), project / "elsewhere");
  VestraProjectInfo record(file(), &handler);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  record.recordSendAttempt();
  EXPECT_EQ(readFile(project / "elsewhere"), "1700000000\n0\n2\n0\n" + record.getProjectId() + "\n");
}

TEST_F(CorruptIdentity, BlocksNoAttemptWhenItHasBecomeANamedPipe) {
  VestraProjectInfo record(file(), &handler);
  ASSERT_TRUE(record.loadOrCreate());
  unlink(file().c_str());
  makeNamedPipe(file());
  EXPECT_TRUE(record.recordSendAttempt());
}

TEST_F(CorruptIdentity, CannotBeUsedWhenADirectoryIsAFile) {
  writeFile(project / "vestra", "");
  EXPECT_FALSE(loads());
  EXPECT_EQ(readFile(project / "vestra"), "");
  handler.setProjectDirectory(project / "vestra");
  EXPECT_FALSE(handler.setupVestraInfo());
}

struct Permissions {
  const char* name;
  const char* place;
  mode_t mode;
};

TEST_F(CorruptIdentity, CannotBeMadeWithoutPermission) {
  const Permissions rows[] = {{"project read-only", "", 0555}, {"vestra read-only", "vestra", 0555}};
  for (const Permissions& row : rows) {
    SCOPED_TRACE(row.name);
    makeDirectory(project / row.place);
    const ScopedMode changed(project / row.place, row.mode);
    EXPECT_EQ(loadsForAnOrdinaryUser(), "false");
    EXPECT_EQ(namesIn(project / row.place), std::vector<std::string>{});
  }
}

TEST_F(CorruptIdentity, IsLeftAloneWithoutPermission) {
  const std::string text = "0\n0\n1\n0\nid\n";
  const Permissions rows[] = {{"vestra not to be entered", "vestra", 0000},
                              {"file read-only", "vestra/.kelvo_vestrra.info", 0444},
                              {"file without permissions", "vestra/.kelvo_vestrra.info", 0000}};
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
  writeIdentity("0\n0\n42\n0\nid\n");
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
  EXPECT_EQ(identity(), "1700000000\n0\n2\n0\n\n");
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
  EXPECT_EQ(identity().substr(0, 17), "1700000000\n0\n2\n0\n");
}

}  // namespace
}  // namespace Oza
