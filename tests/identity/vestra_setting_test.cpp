#include <fcntl.h>

#include "identity/settings_fixture.h"
#include "support/file_holders.h"

namespace Oza {
namespace {

TEST(SettingsPath, LiesBelowTheHomeOrTmp) {
  EXPECT_EQ(settingsPath("/home/ann"), "/home/ann/.Calvix/Common/2018.2/vestra");
  EXPECT_EQ(settingsPath("/h/"), "/h//.Calvix/Common/2018.2/vestra");
  EXPECT_EQ(settingsPath("/"), "//.Calvix/Common/2018.2/vestra");
  EXPECT_EQ(settingsPath("relative"), "relative/.Calvix/Common/2018.2/vestra");
  EXPECT_EQ(settingsPath(""), "/tmp/.Calvix/Common/2018.2/vestra");
  EXPECT_EQ(settingsPath(nullptr), "/tmp/.Calvix/Common/2018.2/vestra");
}

class Settings : public SettingsFixture {};

TEST_F(Settings, AreReadOnce) {
  writeSettings("RandomID=abc\nempty=\n");
  VestraSetting setting;
  writeSettings("RandomID=other\nk=v\n");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(setting.getRandomId(), "abc");
  EXPECT_EQ(setting.getPropertyValue("randomid"), "");
  EXPECT_EQ(setting.getPropertyValue("empty"), "");
  EXPECT_EQ(setting.getPropertyValue("k"), "");
  setting.readFile();
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(setting.getPropertyValue("k"), "v");
}

TEST_F(Settings, WithoutAFileAreEmptyAndMakeNothing) {
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "");
  EXPECT_EQ(namesIn(home.path()), std::vector<std::string>{});
}

TEST_F(Settings, AreThoseOfAnotherHomeOnceThePathIsComputedAgain) {
  VestraSetting setting;
  const TemporaryDirectory other;
  writeFile(other / ".Calvix/Common/2018.2/vestra", "k=other\n");
  const ScopedEnv moved("HOME", other.path());
  setting.setOrbeloFile();
  EXPECT_EQ(setting.getPropertyValue("k"), "");
  setting.readFile();
  EXPECT_EQ(setting.getPropertyValue("k"), "other");
}

TEST_F(Settings, KeepTheirBytesUnderTheHostsLocale) {
  const ScopedLocale swapping(caseSwappingFilesLocale());
  const std::string identifier = randomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
  EXPECT_EQ(randomId(), identifier);
}

TEST_F(Settings, AreNamedByOneVersion) { EXPECT_EQ(VestraSetting().getCalvixVersion(), "2018.2"); }

TEST_F(Settings, AreTrueWhenTheyBeginWithTrue) {
  VestraSetting setting;
  for (const char* text : {"true", "true ", "truex", "trueish"}) {
    EXPECT_TRUE(setting.stringToBool(text)) << text;
  }
  for (const char* text : {"TRUE", "True", " true", "tru", "untrue", "1", "yes", ""}) {
    EXPECT_FALSE(setting.stringToBool(text)) << text;
  }
}

class RandomId : public SettingsFixture {};

TEST_F(RandomId, IsCreatedOnce) {
  VestraSetting setting;
  const std::string identifier = setting.getRandomId();
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
  writeSettings("touched by nobody");
  EXPECT_EQ(setting.getRandomId(), identifier);
  EXPECT_EQ(setting.getPropertyValue("RandomID"), identifier);
  EXPECT_EQ(settings(), "touched by nobody");
}

TEST_F(RandomId, IsThatOfAnotherProcessWhichAppendedOneInBetween) {
  VestraSetting setting;
  writeSettings("RandomID=of another process\n");
  EXPECT_EQ(setting.getRandomId(), "of another process");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "of another process");
  EXPECT_EQ(settings(), "RandomID=of another process\n");
}

TEST_F(RandomId, IsAppendedWithoutReadingAgainWhenTheLockTimesOut) {
  VestraSetting setting;
  writeSettings("RandomID=of another process\n");
  const LockHolder other(file(), F_WRLCK);
  const std::string identifier = setting.getRandomId();
  EXPECT_EQ(settings(), "RandomID=of another process\nRandomID=" + identifier + "\n");
}

}  // namespace
}  // namespace Oza
