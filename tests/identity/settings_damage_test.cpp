// The table of corrupt settings files in docs/file-formats.md, row by row.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "identity/settings_fixture.h"
#include "identity/vestra_setting.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_env.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using namespace std::string_literals;
using vestra_test::asOrdinaryUser;
using vestra_test::isRandomUuid;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::readFile;

class CorruptSettings : public vestra_test::SettingsFixture {
 protected:
  /// Reads what is there, gets an identifier, and looks whether the next process
  /// gets the same.
  void expectNewIdentifierThatLasts() const {
    const std::string identifier = VestraSetting().getRandomId();
    EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
    EXPECT_EQ(VestraSetting().getRandomId(), identifier);
  }

  /// Nothing is read, nothing is made, nobody waits.
  void expectNoIdentifier() const {
    VestraSetting setting;
    EXPECT_EQ(setting.getPropertyValue("RandomID"), "");
    EXPECT_EQ(setting.getRandomId(), "");
    EXPECT_EQ(setting.getPropertyValue("RandomID"), "");
  }
};

struct SettingsRow {
  const char* name;
  std::string text;
};

TEST_F(CorruptSettings, AreKeptAndGetAnIdentifierBehindThem) {
  const SettingsRow rows[] = {
      {"empty", ""},
      {"without an identifier", "a=b\n"},
      {"binary",
       "\x7f"
       "ELF\0\x01\xff\xfe==\n\0\0\n"s},
      {"a NUL in front of the key", "\0RandomID=abc\n"s},
      {"two equals signs", "RandomID=a=b\n"},
      {"an equals sign behind the identifier", "RandomID=abc=\n"},
      {"blanks around the equals sign", "RandomID = abc\n"},
      {"small letters", "randomid=abc\n"},
      {"a byte-order mark", "\xef\xbb\xbfRandomID=abc\n"},
  };
  for (const SettingsRow& row : rows) {
    SCOPED_TRACE(row.name);
    writeSettings(row.text);
    expectNewIdentifierThatLasts();
    EXPECT_EQ(settings().substr(0, row.text.size()), row.text);
  }
}

TEST_F(CorruptSettings, AreUsedAndLeftAloneWithAnIdentifier) {
  const std::pair<SettingsRow, std::string> rows[] = {
      {{"no line end", "RandomID=abc"}, "abc"},
      {{"cut short", "RandomID=3f2a"}, "3f2a"},
      {{"two identifiers", "a=b\nRandomID=first\nRandomID=second\n"}, "first"},
      {{"the same line twice", "RandomID=abc\nRandomID=abc\n"}, "abc"},
      {{"DOS line ends", "a=b\r\nRandomID=abc\r\n"}, "abc"},
      {{"a NUL in the identifier", "RandomID=a\0b\n"s}, "a\0b"s},
      {{"a long line", std::string(1000000, 'x') + "\nRandomID=abc\n"}, "abc"},
      {{"no UUID", "RandomID=not a uuid \xff\n"}, "not a uuid \xff"},
  };
  for (const auto& [row, identifier] : rows) {
    SCOPED_TRACE(row.name);
    writeSettings(row.text);
    EXPECT_EQ(VestraSetting().getRandomId(), identifier);
    EXPECT_TRUE(settings() == row.text);
  }
}

TEST_F(CorruptSettings, LoseTheLineToWhichAnIdentifierIsAppended) {
  const SettingsRow rows[] = {
      {"cut behind the equals sign", "a=b\nRandomID="},
      {"cut before it", "a=b\nRand"},
      {"no line end", "a=b"},
      {"old Mac line ends", "a=b\rRandomID=abc\r"},
      {"NUL bytes", std::string(4096, '\0')},
  };
  for (const SettingsRow& row : rows) {
    SCOPED_TRACE(row.name);
    writeSettings(row.text);
    const std::string lost = VestraSetting().getRandomId();
    EXPECT_EQ(settings(), row.text + "RandomID=" + lost + "\n");
    EXPECT_TRUE(isRandomUuid(lost)) << lost;
    EXPECT_NE(VestraSetting().getRandomId(), lost);
    EXPECT_NE(VestraSetting().getRandomId(), lost);
  }
}

TEST_F(CorruptSettings, EveryTruncationOfAGoodFileIsUsableAgainAfterTwoRuns) {
  const std::string good = "a=b\nRandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    writeSettings(good.substr(0, length));
    VestraSetting().getRandomId();
    const std::string identifier = VestraSetting().getRandomId();
    EXPECT_NE(identifier, "") << "length " << length;
    EXPECT_EQ(VestraSetting().getRandomId(), identifier) << "length " << length;
  }
}

struct SettingsObstacle {
  const char* name;
  std::function<void(const std::string& path, const std::string& root)> put;
};

TEST_F(CorruptSettings, GiveNoIdentifierWhenSomethingElseIsInTheirPlace) {
  const SettingsObstacle rows[] = {
      {"a directory", [](const auto& path, const auto&) { makeDirectory(path); }},
      {"a named pipe", [](const auto& path, const auto&) { makeNamedPipe(path); }},
      {"a link to a named pipe",
       [](const auto& path, const auto& root) {
         makeNamedPipe(root + "/pipe");
         makeLink(path, root + "/pipe");
       }},
      {"a socket", [](const auto& path, const auto&) { makeSocket(path); }},
      {"a link to itself", [](const auto& path, const auto&) { makeLink(path, "vestra"); }},
      {"a link into a missing directory",
       [](const auto& path, const auto& root) { makeLink(path, root + "/missing/elsewhere"); }},
  };
  for (const SettingsObstacle& row : rows) {
    SCOPED_TRACE(row.name);
    const vestra_test::TemporaryDirectory other;
    const vestra_test::ScopedEnv there("HOME", other.path());
    row.put(other / ".Calvix/Common/2018.2/vestra", other.path());
    expectNoIdentifier();
  }
}

TEST_F(CorruptSettings, LinkToNowhereIsFilled) {
  makeLink(file(), home / "elsewhere");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(readFile(home / "elsewhere"), "RandomID=" + identifier + "\n");
}

TEST_F(CorruptSettings, NullDeviceGivesAnIdentifierForThisProcessOnly) {
  makeLink(file(), "/dev/null");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_NE(VestraSetting().getRandomId(), identifier);
}

TEST_F(CorruptSettings, EndlessDeviceIsNotRead) {
  makeLink(file(), "/dev/zero");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(CorruptSettings, ReadErrorIsTheEndOfTheFile) {
  makeLink(file(), "/proc/self/mem");
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "");
}

TEST_F(CorruptSettings, FileWithoutPermissionsGivesNoIdentifier) {
  writeSettings("RandomID=abc\n");
  const vestra_test::ScopedMode none(file(), 0000);
  EXPECT_EQ(asOrdinaryUser([] { return VestraSetting().getRandomId(); }), "");
}

TEST_F(CorruptSettings, ReadOnlyFileWithAnIdentifierIsUsed) {
  writeSettings("RandomID=abc\n");
  const vestra_test::ScopedMode readOnly(file(), 0444);
  EXPECT_EQ(asOrdinaryUser([] { return VestraSetting().getRandomId(); }), "abc");
}

}  // namespace
}  // namespace Oza
