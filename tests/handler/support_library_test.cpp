#include "handler/support_library.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "support/error_of.h"
#include "support/stand_in/stand_in_library.h"

namespace Oza {
namespace {

using vestra_test::errorOf;
using vestra_test::StandInLibrary;

TEST(SupportLibrary, ThatIsMissingCannotBeOpened) {
  EXPECT_EQ(support_library::open(), nullptr);
  EXPECT_FALSE(support_library::isOpen());
}

TEST(SupportLibrary, IsOpenBetweenOpeningAndClosing) {
  const StandInLibrary library;
  EXPECT_FALSE(support_library::isOpen());
  void* handle = support_library::open();
  ASSERT_NE(handle, nullptr);
  EXPECT_TRUE(support_library::isOpen());
  support_library::close(handle);
  EXPECT_FALSE(support_library::isOpen());
}

TEST(SupportLibrary, IsUnloadedByClosing) {
  StandInLibrary library;
  support_library::close(support_library::open());
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST(SupportLibrary, AnswersItsThreeQuestions) {
  StandInLibrary library;
  library.nameTool("/opt/design/bin/tool");
  library.nameRegistration("REG-77");
  library.describeEnvironment("a#1");
  support_library::open();
  EXPECT_EQ(support_library::execPath(), "/opt/design/bin/tool");
  EXPECT_EQ(support_library::registrationId(), "REG-77");
  EXPECT_EQ(support_library::environmentData("KELVO"), "a#1");
  EXPECT_EQ(library.calls(),
            "oza_vestra_exec_path()\n"
            "oza_vestra_regid(Implementation)\n"
            "oza_vestra_enviroment_data(KELVO)\n");
}

TEST(SupportLibrary, IsAskedNothingByOpening) {
  const StandInLibrary library;
  support_library::open();
  EXPECT_EQ(library.calls(), "");
}

TEST(SupportLibrary, IsAskedAnewEachTime) {
  StandInLibrary library;
  support_library::open();
  library.nameTool("first");
  EXPECT_EQ(support_library::execPath(), "first");
  library.nameTool("second");
  EXPECT_EQ(support_library::execPath(), "second");
}

TEST(SupportLibrary, HandsANullProductNameOn) {
  const StandInLibrary library;
  support_library::open();
  support_library::environmentData(nullptr);
  EXPECT_EQ(library.calls(), "oza_vestra_enviroment_data(null)\n");
}

TEST(SupportLibrary, MayAnswerWithTheEmptyText) {
  StandInLibrary library;
  library.nameTool("");
  support_library::open();
  EXPECT_EQ(support_library::execPath(), "");
}

TEST(SupportLibrary, NullAnswerThrowsTheTextThatHostsKnow) {
  StandInLibrary library;
  library.nameTool(std::nullopt);
  library.nameRegistration(std::nullopt);
  library.describeEnvironment(std::nullopt);
  support_library::open();
  const std::string expected = "basic_string::_M_construct null not valid";
  EXPECT_EQ(errorOf([] { support_library::execPath(); }), expected);
  EXPECT_EQ(errorOf([] { support_library::registrationId(); }), expected);
  EXPECT_EQ(errorOf([] { support_library::environmentData("KELVO"); }), expected);
}

TEST(SupportLibrary, WithoutAToolOpensButDoesNotCountAsOpen) {
  const StandInLibrary library("no_exec_path");
  EXPECT_NE(support_library::open(), nullptr);
  EXPECT_FALSE(support_library::isOpen());
  EXPECT_EQ(errorOf([] { support_library::execPath(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_exec_path");
  EXPECT_EQ(support_library::registrationId(), "REG-1");
}

TEST(SupportLibrary, WithoutARegistrationSaysSoWhenAsked) {
  const StandInLibrary library("no_regid");
  support_library::open();
  EXPECT_TRUE(support_library::isOpen());
  EXPECT_EQ(errorOf([] { support_library::registrationId(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_regid");
  EXPECT_EQ(support_library::execPath(), "/bin/true");
}

TEST(SupportLibrary, WithoutAnEnvironmentSaysSoWhenAsked) {
  const StandInLibrary library("no_environment");
  support_library::open();
  EXPECT_TRUE(support_library::isOpen());
  EXPECT_EQ(errorOf([] { support_library::environmentData(nullptr); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_enviroment_data");
}

TEST(SupportLibrary, OpenedAgainIsLookedUpAgain) {
  {
    const StandInLibrary library;
    support_library::close(support_library::open());
  }
  const StandInLibrary lesser("no_regid");
  support_library::open();
  EXPECT_EQ(errorOf([] { support_library::registrationId(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_regid");
}

}  // namespace
}  // namespace Oza
