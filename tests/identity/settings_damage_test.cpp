#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "identity/settings_fixture.h"
#include "identity/vestra_setting.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/special_files.h"
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

/// Damage to the settings file, and what the library makes of it.
class DamagedSettings : public vestra_test::SettingsFixture {
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

TEST_F(DamagedSettings, EmptyFileGetsAnIdentifier) {
  writeSettings("");
  expectNewIdentifierThatLasts();
}

TEST_F(DamagedSettings, BinaryRubbishIsKeptAndGetsAnIdentifierBehindIt) {
  const std::string rubbish =
      "\x7f"
      "ELF\0\x01\xff\xfe==\n\0\0\n"s;
  writeSettings(rubbish);
  expectNewIdentifierThatLasts();
  EXPECT_EQ(settings().substr(0, rubbish.size()), rubbish);
}

TEST_F(DamagedSettings, NulBytesInFrontOfTheKeyHideIt) {
  writeSettings("\0RandomID=abc\n"s);
  expectNewIdentifierThatLasts();
}

TEST_F(DamagedSettings, NulBytesInTheIdentifierAreKept) {
  writeSettings("RandomID=a\0b\n"s);
  EXPECT_EQ(VestraSetting().getRandomId(), "a\0b"s);
}

TEST_F(DamagedSettings, FileOfNulBytesLosesTheFirstIdentifierBehindThem) {
  writeSettings(std::string(4096, '\0'));
  const std::string lost = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(lost)) << lost;
  const std::string kept = VestraSetting().getRandomId();
  EXPECT_NE(kept, lost);
  EXPECT_EQ(VestraSetting().getRandomId(), kept);
}

TEST_F(DamagedSettings, DosLineEndsDoNoHarm) {
  writeSettings("a=b\r\nRandomID=abc\r\n");
  EXPECT_EQ(VestraSetting().getRandomId(), "abc");
}

TEST_F(DamagedSettings, OldMacLineEndsMakeOneLineOfAll) {
  writeSettings("a=b\rRandomID=abc\r");
  const std::string lost = VestraSetting().getRandomId();
  EXPECT_EQ(settings(), "a=b\rRandomID=abc\rRandomID=" + lost + "\n");
  expectNewIdentifierThatLasts();
}

TEST_F(DamagedSettings, LongLineDoesNoHarm) {
  writeSettings(std::string(1000000, 'x') + "\nRandomID=abc\n");
  EXPECT_EQ(VestraSetting().getRandomId(), "abc");
}

TEST_F(DamagedSettings, EqualsSignInTheIdentifierDropsIt) {
  writeSettings("RandomID=abc=\n");
  expectNewIdentifierThatLasts();
}

TEST_F(DamagedSettings, TwiceWrittenLineCountsOnce) {
  writeSettings("RandomID=abc\nRandomID=abc\n");
  EXPECT_EQ(VestraSetting().getRandomId(), "abc");
  EXPECT_EQ(settings(), "RandomID=abc\nRandomID=abc\n");
}

TEST_F(DamagedSettings, EveryTruncationOfAGoodFileIsUsableAgainAfterTwoRuns) {
  const std::string good = "a=b\nRandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    writeSettings(good.substr(0, length));
    VestraSetting().getRandomId();
    const std::string identifier = VestraSetting().getRandomId();
    EXPECT_NE(identifier, "") << "length " << length;
    EXPECT_EQ(VestraSetting().getRandomId(), identifier) << "length " << length;
  }
}

TEST_F(DamagedSettings, IdentifierCutOffBehindItsEqualsSignIsMadeWholeByTheAppending) {
  writeSettings("a=b\nRandomID=");
  const std::string lost = VestraSetting().getRandomId();
  EXPECT_EQ(settings(), "a=b\nRandomID=RandomID=" + lost + "\n");
  expectNewIdentifierThatLasts();
}

TEST_F(DamagedSettings, DirectoryInItsPlaceGivesNoIdentifier) {
  makeDirectory(file());
  expectNoIdentifier();
  EXPECT_EQ(vestra_test::namesIn(file()), std::vector<std::string>{});
}

TEST_F(DamagedSettings, NamedPipeInItsPlaceGivesNoIdentifier) {
  makeNamedPipe(file());
  expectNoIdentifier();
}

TEST_F(DamagedSettings, LinkToANamedPipeGivesNoIdentifier) {
  makeNamedPipe(home / "pipe");
  makeLink(file(), home / "pipe");
  expectNoIdentifier();
}

TEST_F(DamagedSettings, SocketInItsPlaceGivesNoIdentifier) {
  makeSocket(file());
  expectNoIdentifier();
}

TEST_F(DamagedSettings, LinkToItselfGivesNoIdentifier) {
  makeLink(file(), "vestra");
  expectNoIdentifier();
}

TEST_F(DamagedSettings, LinkToNowhereIsFilled) {
  makeLink(file(), home / "elsewhere");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_EQ(readFile(home / "elsewhere"), "RandomID=" + identifier + "\n");
}

TEST_F(DamagedSettings, LinkIntoAMissingDirectoryGivesNoIdentifier) {
  makeLink(file(), home / "missing/elsewhere");
  expectNoIdentifier();
}

TEST_F(DamagedSettings, NullDeviceGivesAnIdentifierForThisProcessOnly) {
  makeLink(file(), "/dev/null");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
  EXPECT_NE(VestraSetting().getRandomId(), identifier);
}

TEST_F(DamagedSettings, EndlessDeviceIsNotRead) {
  makeLink(file(), "/dev/zero");
  const std::string identifier = VestraSetting().getRandomId();
  EXPECT_TRUE(isRandomUuid(identifier)) << identifier;
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(DamagedSettings, ReadErrorIsTheEndOfTheFile) {
  makeLink(file(), "/proc/self/mem");
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "");
}

TEST_F(DamagedSettings, FileWithoutPermissionsGivesNoIdentifier) {
  writeSettings("RandomID=abc\n");
  const vestra_test::ScopedMode none(file(), 0000);
  EXPECT_EQ(asOrdinaryUser([] { return VestraSetting().getRandomId(); }), "");
}

TEST_F(DamagedSettings, ReadOnlyFileWithAnIdentifierIsUsed) {
  writeSettings("RandomID=abc\n");
  const vestra_test::ScopedMode readOnly(file(), 0444);
  EXPECT_EQ(asOrdinaryUser([] { return VestraSetting().getRandomId(); }), "abc");
}

}  // namespace
}  // namespace Oza
