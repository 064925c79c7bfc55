#include <gtest/gtest.h>

#include <fcntl.h>

#include <string>
#include <vector>

#include "identity/settings_fixture.h"
#include "identity/vestra_setting.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/lock_holder.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using vestra_test::asOrdinaryUser;
using vestra_test::isRandomUuid;
using vestra_test::makeDirectory;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedLocale;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

class RandomId : public vestra_test::SettingsFixture {
 protected:
  static std::string idForAnOrdinaryUser() {
    return asOrdinaryUser([] { return VestraSetting().getRandomId(); });
  }

  /// The identifier of the first line.
  std::string firstIdInFile() const { return settings().substr(9, 36); }
};

TEST_F(RandomId, RandomIdOfTheFileMayHaveAnyForm) {
  const std::string odd = "not a uuid \xff " + std::string(1000, 'x');
  writeSettings("RandomID=" + odd + "\n");
  EXPECT_EQ(VestraSetting().getRandomId(), odd);
}

TEST_F(RandomId, RandomIdIsMadeWithFileAndDirectories) {
  VestraSetting setting;
  const std::string identifier = setting.getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
  EXPECT_EQ(namesIn(home / ".Calvix/Common/2018.2"), std::vector<std::string>{"vestra"});
}

TEST_F(RandomId, RandomIdIsMadeOnce) {
  VestraSetting setting;
  const std::string identifier = setting.getRandomId();
  writeSettings("touched by nobody");
  EXPECT_EQ(setting.getRandomId(), identifier);
  EXPECT_EQ(setting.getPropertyValue("RandomID"), identifier);
  EXPECT_EQ(settings(), "touched by nobody");
}

TEST_F(RandomId, RandomIdIsFoundByTheNextProcess) {
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_EQ(VestraSetting().getRandomId(), identifier);
}

TEST_F(RandomId, RandomIdIsAppendedAfterOtherLines) {
  writeSettings("a=b\n# no comment\n");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "a=b\n# no comment\nRandomID=" + identifier + "\n");
}

TEST_F(RandomId, RandomIdThatAnotherProcessHasAppendedMeanwhileIsUsed) {
  VestraSetting setting;
  writeSettings("RandomID=of another process\n");
  EXPECT_EQ(setting.getRandomId(), "of another process");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "of another process");
  EXPECT_EQ(settings(), "RandomID=of another process\n");
}

TEST_F(RandomId, RandomIdIsAppendedWithoutALookWhereTheLockCannotBeHad) {
  VestraSetting setting;
  writeSettings("RandomID=of another process\n");
  const vestra_test::LockHolder other(file(), F_WRLCK);
  const std::string identifier = setting.getRandomId();
  EXPECT_EQ(settings(), "RandomID=of another process\nRandomID=" + identifier + "\n");
}

TEST_F(RandomId, RandomIdBehindAnEmptyOneIsMadeAnewAtEachCall) {
  writeSettings("RandomID=\n");
  VestraSetting setting;
  const std::string first = setting.getRandomId();
  const std::string second = setting.getRandomId();
  EXPECT_TRUE(isRandomUuid(first)) << first;
  EXPECT_TRUE(isRandomUuid(second)) << second;
  EXPECT_NE(first, second);
  EXPECT_EQ(settings(), "RandomID=\nRandomID=" + first + "\nRandomID=" + second + "\n");
  EXPECT_EQ(setting.getPropertyValue("RandomID"), "");

  const std::string third = VestraSetting().getRandomId();
  EXPECT_EQ(settings(),
            "RandomID=\nRandomID=" + first + "\nRandomID=" + second + "\nRandomID=" + third + "\n");
}

TEST_F(RandomId, RandomIdIsWrittenInOurBytesUnderTheHostsLocale) {
  const ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
}

TEST_F(RandomId, RandomIdIsEmptyWhereTheHomeIsAFile) {
  writeFile(home / "file", "");
  const vestra_test::ScopedEnv fileAsHome("HOME", home / "file");
  EXPECT_EQ(VestraSetting().getRandomId(), "");
}

TEST_F(RandomId, RandomIdIsEmptyWhereAParentDirectoryIsAFile) {
  writeFile(home / ".Calvix/Common", "");
  EXPECT_EQ(VestraSetting().getRandomId(), "");
  EXPECT_EQ(readFile(home / ".Calvix/Common"), "");
}

TEST_F(RandomId, RandomIdIsEmptyWhereTheHomesDirectoriesCannotBeMade) {
  const ScopedMode readOnly(home.path(), 0555);
  EXPECT_EQ(idForAnOrdinaryUser(), "");
  EXPECT_EQ(namesIn(home.path()), std::vector<std::string>{});
}

TEST_F(RandomId, RandomIdIsEmptyWhereTheSettingsDirectoryIsReadOnly) {
  makeDirectory(home / ".Calvix/Common/2018.2");
  const ScopedMode readOnly(home / ".Calvix/Common/2018.2", 0555);
  EXPECT_EQ(idForAnOrdinaryUser(), "");
  EXPECT_EQ(namesIn(home / ".Calvix/Common/2018.2"), std::vector<std::string>{});
}

TEST_F(RandomId, RandomIdIsEmptyWhereTheDirectoryCannotBeEntered) {
  writeSettings("RandomID=abc\n");
  const ScopedMode shut(home / ".Calvix", 0000);
  EXPECT_EQ(idForAnOrdinaryUser(), "");
}

TEST_F(RandomId, RandomIdIsEmptyWhereTheFileIsReadOnlyAndHasNone) {
  writeSettings("a=b\n");
  const ScopedMode readOnly(file(), 0444);
  EXPECT_EQ(idForAnOrdinaryUser(), "");
  EXPECT_EQ(settings(), "a=b\n");
}

TEST_F(RandomId, RandomIdIsTriedAgainAfterAFailure) {
  writeFile(home / ".Calvix/Common", "");
  VestraSetting setting;
  EXPECT_EQ(setting.getRandomId(), "");
  unlink((home / ".Calvix/Common").c_str());
  const std::string identifier = setting.getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(settings(), "RandomID=" + identifier + "\n");
}

TEST_F(RandomId, RandomIdOfAnUnreadableFileIsAppendedUnseen) {
  writeSettings("RandomID=abc\n");
  const ScopedMode writeOnly(file(), 0222);
  const std::string identifier = idForAnOrdinaryUser();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  const ScopedMode readable(file(), 0644);
  EXPECT_EQ(settings(), "RandomID=abc\nRandomID=" + identifier + "\n");
}

TEST_F(RandomId, RandomIdThatCannotBeWrittenIsKeptForTheProcess) {
  vestra_test::makeLink(file(), "/dev/full");
  VestraSetting setting;
  const std::string identifier = setting.getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(setting.getRandomId(), identifier);
  EXPECT_NE(VestraSetting().getRandomId(), identifier);
}

}  // namespace
}  // namespace Oza
