// The table of corrupt settings files in docs/file-formats.md, row by row.

#include "identity/settings_fixture.h"

namespace Oza {
namespace {

class CorruptSettings : public SettingsFixture {};

enum class NextRun { GETS_THE_SAME, GETS_A_NEW_ONE_THAT_LASTS, GETS_A_NEW_ONE };

TEST_F(CorruptSettings, AreReadAndAppendedTo) {
  const struct {
    const char* damage;
    std::optional<std::string> text;
    /// Empty where a new identifier is appended.
    std::string identifier;
    NextRun next;
  } rows[] = {
      {"missing", std::nullopt, "", NextRun::GETS_THE_SAME},
      {"empty", "", "", NextRun::GETS_THE_SAME},
      {"without the key", "a=b\n# no comment\n", "", NextRun::GETS_THE_SAME},
      {"no line end", "RandomID=abc", "abc", NextRun::GETS_THE_SAME},
      {"an identifier cut short", "RandomID=3f2a", "3f2a", NextRun::GETS_THE_SAME},
      {"cut behind the equals sign", "a=b\nRandomID=", "", NextRun::GETS_A_NEW_ONE_THAT_LASTS},
      {"an empty identifier first", "RandomID=\n", "", NextRun::GETS_A_NEW_ONE},
      {"cut before the equals sign", "a=b\nRand", "", NextRun::GETS_A_NEW_ONE_THAT_LASTS},
      {"another pair without a line end", "a=b", "", NextRun::GETS_A_NEW_ONE_THAT_LASTS},
      {"two equals signs", "RandomID=a=b\n", "", NextRun::GETS_THE_SAME},
      {"an equals sign behind the identifier", "RandomID=abc=\n", "", NextRun::GETS_THE_SAME},
      {"blanks around the equals sign", "RandomID = abc\n", "", NextRun::GETS_THE_SAME},
      {"small letters", "randomid=abc\n", "", NextRun::GETS_THE_SAME},
      {"a byte-order mark", "\xef\xbb\xbfRandomID=abc\n", "", NextRun::GETS_THE_SAME},
      {"two pairs", "a=b\nRandomID=first\nRandomID=second\n", "first", NextRun::GETS_THE_SAME},
      {"carriage returns at line ends", "a=b\r\nRandomID=abc\r\n", "abc", NextRun::GETS_THE_SAME},
      {"carriage returns as line ends", "a=b\rRandomID=abc\r", "", NextRun::GETS_A_NEW_ONE_THAT_LASTS},
      {"a NUL in the identifier", "RandomID=a\0b\n"s, "a\0b"s, NextRun::GETS_THE_SAME},
      {"a NUL in front of the key", "\0RandomID=abc\n"s, "", NextRun::GETS_THE_SAME},
      {"NUL bytes", std::string(4096, '\0'), "", NextRun::GETS_A_NEW_ONE_THAT_LASTS},
      {"binary",
       "\x7f"
       "ELF\0\x01\xff\xfe==\n\0\0\n"s,
       "", NextRun::GETS_THE_SAME},
      {"no UUID", "RandomID=not a uuid \xff\n", "not a uuid \xff", NextRun::GETS_THE_SAME},
      {"behind a long line", std::string(1000000, 'x') + "\nRandomID=abc\n", "abc", NextRun::GETS_THE_SAME},
      {"behind the first MiB", std::string((1U << 20U) - 1, 'x') + "\nRandomID=abc\n", "",
       NextRun::GETS_A_NEW_ONE},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.damage);
    if (row.text) {
      writeSettings(*row.text);
    }
    const std::string first = randomId();
    if (row.identifier.empty()) {
      EXPECT_TRUE(isRandomUuid(first)) << first;
      EXPECT_TRUE(settings() == row.text.value_or("") + "RandomID=" + first + "\n");
    } else {
      EXPECT_EQ(first, row.identifier);
      EXPECT_TRUE(settings() == row.text);
    }
    EXPECT_EQ(namesIn(directory()), std::vector<std::string>{"vestra"});
    const std::string second = randomId();
    EXPECT_EQ(second == first, row.next == NextRun::GETS_THE_SAME);
    EXPECT_EQ(randomId() == second, row.next != NextRun::GETS_A_NEW_ONE);
  }
}

TEST_F(CorruptSettings, WithAnEmptyIdentifierFirstGetAnotherAtEachCall) {
  writeSettings("RandomID=\n");
  VestraSetting setting;
  const std::string first = setting.getRandomId();
  const std::string second = setting.getRandomId();
  EXPECT_NE(first, second);
  EXPECT_EQ(settings(), "RandomID=\nRandomID=" + first + "\nRandomID=" + second + "\n");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "");
}

TEST_F(CorruptSettings, CutAnywhereAreUsableAgainAfterTwoRuns) {
  const std::string good = "a=b\nRandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    writeSettings(good.substr(0, length));
    randomId();
    const std::string identifier = randomId();
    EXPECT_NE(identifier, "") << "length " << length;
    EXPECT_EQ(randomId(), identifier) << "length " << length;
  }
}

TEST_F(CorruptSettings, AreUsedAsFarAsPermissionsGo) {
  const struct {
    const char* name;
    std::string text;
    mode_t mode;
    const char* identifier;
  } rows[] = {{"readable", "RandomID=abc\n", 0444, "abc"},
              {"readable, without an identifier", "a=b\n", 0444, ""},
              {"without permissions", "RandomID=abc\n", 0000, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    writeSettings(row.text);
    {
      const ScopedMode mode(file(), row.mode);
      EXPECT_EQ(randomIdForAnOrdinaryUser(), row.identifier);
    }
    EXPECT_EQ(settings(), row.text);
  }
}

TEST_F(CorruptSettings, ThatCannotBeReadGetALineUnseen) {
  writeSettings("RandomID=abc\n");
  std::string identifier;
  {
    const ScopedMode writeOnly(file(), 0222);
    identifier = randomIdForAnOrdinaryUser();
  }
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "RandomID=abc\nRandomID=" + identifier + "\n");
}

TEST_F(CorruptSettings, GiveNoIdentifierWhereTheirDirectoryCannotBeUsed) {
  const struct {
    const char* name;
    std::string directory;
    mode_t mode;
  } rows[] = {{"home read-only", "", 0555},
              {"directory read-only", ".Calvix/Common/2018.2", 0555},
              {"directory not to be entered", ".Calvix", 0000}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    makeDirectory(home / row.directory);
    {
      const ScopedMode mode(home / row.directory, row.mode);
      EXPECT_EQ(randomIdForAnOrdinaryUser(), "");
    }
    EXPECT_FALSE(exists(file()));
  }
}

TEST_F(CorruptSettings, GiveNoIdentifierUntilTheirDirectoryCanBeMade) {
  const std::string place = home / ".Calvix/Common";
  VestraSetting setting;
  writeFile(place, "");
  EXPECT_EQ(setting.getRandomId(), "");
  EXPECT_EQ(readFile(place), "");
  for (const std::string& target : {place, home / "missing"}) {
    unlink(place.c_str());
    makeLink(place, target);
    EXPECT_EQ(setting.getRandomId(), "") << target;
  }
  unlink(place.c_str());
  const std::string identifier = setting.getRandomId();
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
}

TEST_F(CorruptSettings, GiveNoIdentifierWhenSomethingElseIsInTheirPlace) {
  for (const Obstacle& obstacle : obstacles()) {
    SCOPED_TRACE(obstacle.name);
    const TemporaryDirectory other;
    const ScopedEnv there("HOME", other.path());
    obstacle.put(other / ".Calvix/Common/2018.2/vestra");
    VestraSetting setting;
    EXPECT_EQ(setting.getPropertyValue("RandomID"), "");
    EXPECT_EQ(setting.getRandomId(), "");
    EXPECT_EQ(setting.getPropertyValue("RandomID"), "");
  }
}

TEST_F(CorruptSettings, AreWrittenThroughALinkToNowhere) {
  makeLink(file(), home / "elsewhere");
  const std::string identifier = randomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(readFile(home / "elsewhere"), "RandomID=" + identifier + "\n");
}

TEST_F(CorruptSettings, OfADeviceKeepAnIdentifierForThisProcessOnly) {
  for (const char* device : {"/dev/null", "/dev/zero", "/dev/full"}) {
    SCOPED_TRACE(device);
    unlink(file().c_str());
    makeLink(file(), device);
    VestraSetting setting;
    const std::string identifier = setting.getRandomId();
    EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
    EXPECT_EQ(setting.getRandomId(), identifier);
    EXPECT_NE(randomId(), identifier);
  }
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(CorruptSettings, EndAtAReadError) {
  makeLink(file(), "/proc/self/mem");
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "");
}

}  // namespace
}  // namespace Oza
