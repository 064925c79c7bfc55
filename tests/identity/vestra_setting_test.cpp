#include "identity/vestra_setting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "identity/settings_fixture.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_current_directory.h"
#include "support/scoped_env.h"
#include "support/scoped_locale.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

using vestra_test::inRootDirectory;
using vestra_test::namesIn;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;
using vestra_test::writeFile;

class Settings : public vestra_test::SettingsFixture {};

TEST_F(Settings, SettingsAreReadWhenTheObjectIsMade) {
  writeSettings("RandomID=abc\nother=value\n");
  const VestraSetting setting;
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(setting.getPropertyValue("other"), "value");
}

TEST_F(Settings, SettingsAreNotReadAgain) {
  writeSettings("RandomID=abc\n");
  VestraSetting setting;
  writeSettings("RandomID=other\nk=v\n");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(setting.getPropertyValue("k"), "");
  EXPECT_EQ(setting.getRandomId(), "abc");
}

TEST_F(Settings, SettingsWithoutAFileAreEmptyAndMakeNothing) {
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "");
  EXPECT_EQ(namesIn(home.path()), std::vector<std::string>{});
}

TEST_F(Settings, AbsentKeyLooksLikeAnEmptyValue) {
  writeSettings("empty=\n");
  const VestraSetting setting;
  EXPECT_EQ(setting.getPropertyValue("empty"), "");
  EXPECT_EQ(setting.getPropertyValue("absent"), "");
}

TEST_F(Settings, SettingsAreLookedUpByTheExactKey) {
  writeSettings("RandomID=abc\n spaced = v \n=anonymous\n");
  const VestraSetting setting;
  EXPECT_EQ(setting.getPropertyValue("randomid"), "");
  EXPECT_EQ(setting.getPropertyValue("RandomI"), "");
  EXPECT_EQ(setting.getPropertyValue("spaced "), " v");
  EXPECT_EQ(setting.getPropertyValue(""), "anonymous");
}

TEST_F(Settings, ReadingAgainAddsOnlyNewKeys) {
  writeSettings("a=1\n");
  VestraSetting setting;
  writeSettings("a=2\nb=3\n");
  setting.readFile();
  EXPECT_EQ(setting.getPropertyValue("a"), "1");
  EXPECT_EQ(setting.getPropertyValue("b"), "3");
}

TEST_F(Settings, SettingsKeepTheirBytesUnderAConvertingLocale) {
  writeSettings("RandomID=aBc\n");
  const vestra_test::ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "aBc");
}

TEST_F(Settings, NewHomeIsUsedWhenThePathIsComputedAgain) {
  const TemporaryDirectory other;
  writeFile(other / ".Calvix/Common/2018.2/vestra", "k=other\n");
  VestraSetting setting;
  const ScopedEnv moved("HOME", other.path());
  setting.setOrbeloFile();
  EXPECT_EQ(setting.getPropertyValue("k"), "");
  setting.readFile();
  EXPECT_EQ(setting.getPropertyValue("k"), "other");
}

TEST(SettingsPath, RelativeHomeIsLookedForInTheCurrentDirectory) {
  const TemporaryDirectory directory;
  writeFile(directory / "home/.Calvix/Common/2018.2/vestra", "RandomID=relative\n");
  const vestra_test::ScopedCurrentDirectory there(directory.path());
  const ScopedEnv home("HOME", "home");
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "relative");
}

TEST(SettingsPath, HomeThatEndsInASlashKeepsIt) {
  const TemporaryDirectory directory;
  writeFile(directory / ".Calvix/Common/2018.2/vestra", "RandomID=slash\n");
  const ScopedEnv home("HOME", directory.path() + "/");
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "slash");
}

/// The identifier that is found when the file system's root is a given directory.
std::string randomIdIn(const std::string& root, const std::optional<std::string>& homeText) {
  return inRootDirectory(root, [&] {
    const ScopedEnv home("HOME", homeText);
    return VestraSetting().getRandomId();
  });
}

class SettingsPathAtTheRoot : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can take another root directory";
    }
  }

  TemporaryDirectory root;
};

TEST_F(SettingsPathAtTheRoot, SettingsFileWithoutAHomeIsBelowTmp) {
  writeFile(root / "tmp/.Calvix/Common/2018.2/vestra", "RandomID=fallback\n");
  EXPECT_EQ(randomIdIn(root.path(), std::nullopt), "fallback");
}

TEST_F(SettingsPathAtTheRoot, SettingsFileWithAnEmptyHomeIsBelowTmp) {
  writeFile(root / "tmp/.Calvix/Common/2018.2/vestra", "RandomID=fallback\n");
  EXPECT_EQ(randomIdIn(root.path(), ""), "fallback");
}

TEST_F(SettingsPathAtTheRoot, SettingsFileWithoutAHomeANewIdentifierIsKeptBelowTmp) {
  const std::string identifier = randomIdIn(root.path(), std::nullopt);
  EXPECT_EQ(vestra_test::readFile(root / "tmp/.Calvix/Common/2018.2/vestra"),
            "RandomID=" + identifier + "\n");
}

TEST_F(SettingsPathAtTheRoot, SettingsFileWithTheRootAsHomeIsBelowTheRoot) {
  writeFile(root / ".Calvix/Common/2018.2/vestra", "RandomID=root\n");
  EXPECT_EQ(randomIdIn(root.path(), "/"), "root");
}

TEST_F(Settings, StringToBoolAsksForTrueAtTheBeginning) {
  VestraSetting setting;
  EXPECT_TRUE(setting.stringToBool("true"));
  EXPECT_TRUE(setting.stringToBool("true "));
  EXPECT_TRUE(setting.stringToBool("truex"));
  EXPECT_TRUE(setting.stringToBool("trueish"));
  EXPECT_FALSE(setting.stringToBool("TRUE"));
  EXPECT_FALSE(setting.stringToBool("True"));
  EXPECT_FALSE(setting.stringToBool(" true"));
  EXPECT_FALSE(setting.stringToBool("tru"));
  EXPECT_FALSE(setting.stringToBool("untrue"));
  EXPECT_FALSE(setting.stringToBool("1"));
  EXPECT_FALSE(setting.stringToBool("yes"));
  EXPECT_FALSE(setting.stringToBool(""));
}

TEST_F(Settings, SettingsAreNamedByOneVersion) { EXPECT_EQ(VestraSetting().getCalvixVersion(), "2018.2"); }

}  // namespace
}  // namespace Oza
