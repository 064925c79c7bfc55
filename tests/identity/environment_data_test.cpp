#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "handler/report_fixture.h"
#include "support/scoped_locale.h"

namespace Oza {
namespace {

using namespace std::string_literals;

constexpr Vestra::SectionType TARGET_SECTION = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

/// What the support library's environment text turns into, as the script has it.
class EnvironmentData : public vestra_test::ReportFixture {
 protected:
  EnvironmentData() { writeIdentity("0\n0\n7\n0\nid\n"); }

  std::string userEnvironmentOf(const std::string& text) {
    library.describeEnvironment(text);
    EXPECT_TRUE(handler.prepareVestraData());
    return itemsOf("user_environment");
  }

  /// The project's facts that are neither missing nor the identity's own.
  std::string factsOf(const std::string& text) {
    library.describeEnvironment(text);
    EXPECT_TRUE(handler.prepareVestraData());
    std::istringstream lines(itemsOf("software_version_and_target_device"));
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
      if (line.find("=not_applicable") == std::string::npos && line != "project_id=id" &&
          line != "project_iteration=7") {
        kept += line + "\n";
      }
    }
    return kept;
  }
};

TEST_F(EnvironmentData, EnvironmentTextOfTwelveFieldsIsSixItemsOfTheUsersEnvironment) {
  EXPECT_EQ(userEnvironmentOf("a#1#b#2#c#3#d#4#e#5#f#6"), "a=1\nb=2\nc=3\nd=4\ne=5\nf=6\n");
}

TEST_F(EnvironmentData, EnvironmentTextOfTwelveFieldsAddsNothingToTheProjectsFacts) {
  EXPECT_EQ(factsOf("beta#1#b#2#c#3#d#4#e#5#f#6"), "");
}

TEST_F(EnvironmentData, EnvironmentTextOfFourteenFieldsHasOneFactOfTheProject) {
  const std::string text = "a#1#b#2#c#3#d#4#e#5#f#6#beta#yes";
  EXPECT_EQ(factsOf(text), "beta=yes\n");
  EXPECT_EQ(itemsOf("user_environment"), "a=1\nb=2\nc=3\nd=4\ne=5\nf=6\n");
}

TEST_F(EnvironmentData, EnvironmentTextOfSixteenFieldsHasTwoFactsOfTheProject) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#beta#yes#os_platform#linux"), "os_platform=linux\nbeta=yes\n");
}

TEST_F(EnvironmentData, FactsThatTheReportDoesNotKnowAreLeftOut) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#unknown#x#BETA#yes"), "beta=yes\n");
}

TEST_F(EnvironmentData, FirstOfAFactGivenTwiceCounts) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#beta#yes#Beta#no"), "beta=yes\n");
}

TEST_F(EnvironmentData, FactThatTheHostAddedCounts) {
  add("beta", "host's", TARGET_SECTION);
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#beta#yes"), "beta=host's\n");
}

TEST_F(EnvironmentData, EnvironmentTextGivesAProjectIdentifierBeforeTheRecordsOwn) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#project_id#tool's#project_iteration#99"),
            "project_id=tool's\nproject_iteration=99\n");
}

TEST_F(EnvironmentData, EmptyFieldsAreItemsAllTheSame) {
  EXPECT_EQ(userEnvironmentOf("#1#b##c#3####5#f#6"), "=1\nb=\nc=3\n=\n=5\nf=6\n");
}

TEST_F(EnvironmentData, EmptyLastFieldIsAnEmptyValue) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#beta#"), "beta=\n");
}

TEST_F(EnvironmentData, KeysOfTheUsersEnvironmentKeepTheirLetters) {
  EXPECT_EQ(userEnvironmentOf("A#1#a#2#A#3#d#4#e#5#f#6"), "A=1\na=2\nA=3\nd=4\ne=5\nf=6\n");
}

TEST_F(EnvironmentData, EnvironmentTextIsFiledBehindTheHostsItems) {
  add("host", "0", Vestra::USER_ENVIRONMENT);
  EXPECT_EQ(userEnvironmentOf("a#1#b#2#c#3#d#4#e#5#f#6"), "host=0\na=1\nb=2\nc=3\nd=4\ne=5\nf=6\n");
}

TEST_F(EnvironmentData, EnvironmentTextKeepsOtherBytes) {
  EXPECT_EQ(userEnvironmentOf("a b#1=2#\xff#\xc3\xa9#c#\t#d#4#e#5#f# 6 "),
            "a b=1=2\n\xff=\xc3\xa9\nc=\t\nd=4\ne=5\nf= 6 \n");
}

TEST_F(EnvironmentData, EnvironmentTextOfAMegabyteIsRead) {
  const std::string megabyte(1048576, 'x');
  EXPECT_EQ(userEnvironmentOf("a#" + megabyte + "#b#2#c#3#d#4#e#5#f#6"),
            "a=" + megabyte + "\nb=2\nc=3\nd=4\ne=5\nf=6\n");
}

// Fewer fields than there should be, and a last key without a value.

TEST_F(EnvironmentData, EnvironmentTextThatIsEmptyHasNoItems) { EXPECT_EQ(userEnvironmentOf(""), ""); }

TEST_F(EnvironmentData, EnvironmentTextOfOneSeparatorIsOneItemWithoutKeyAndValue) {
  EXPECT_EQ(userEnvironmentOf("#"), "=\n");
}

TEST_F(EnvironmentData, EnvironmentTextOfFewerFieldsHasFewerItems) {
  EXPECT_EQ(userEnvironmentOf("a#1#b#2"), "a=1\nb=2\n");
}

TEST_F(EnvironmentData, EnvironmentTextLosesALastKeyWithoutAValue) {
  EXPECT_EQ(userEnvironmentOf("a#1#b"), "a=1\n");
}

TEST_F(EnvironmentData, EnvironmentTextLosesALastFactWithoutAValue) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#beta"), "");
}

TEST_F(EnvironmentData, EnvironmentTextKeepsTheFactsBeforeALastOneWithoutAValue) {
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6#os_platform#linux#beta"), "os_platform=linux\n");
}

TEST_F(EnvironmentData, EnvironmentTextOfEveryTruncationIsReadToItsLastWholePair) {
  const std::string whole = "a#1#b#2#c#3#d#4#e#5#f#6";
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    VestraHandler fresh;
    fresh.setProjectDirectory(project.path());
    library.describeEnvironment(whole.substr(0, length));
    ASSERT_TRUE(fresh.prepareVestraData());
    std::string expected;
    // A pair is whole as soon as the separator behind its key is there.
    for (std::size_t pair = 0; length >= pair * 4 + 2; ++pair) {
      expected += whole.substr(pair * 4, 1) + "=" +
                  (length > pair * 4 + 2 ? whole.substr(pair * 4 + 2, 1) : "") + "\n";
    }
    EXPECT_EQ(itemsOf("user_environment"), expected) << "length " << length;
  }
}

// The identity record's part.

TEST_F(EnvironmentData, EnvironmentTextIsFollowedByTheRecordsIdentifierAndIteration) {
  handler.prepareVestraData();
  const std::string facts = itemsOf("software_version_and_target_device");
  EXPECT_NE(facts.find("project_id=id\nproject_iteration=7\n"), std::string::npos) << facts;
}

TEST_F(EnvironmentData, EnvironmentTextReportsTheIterationUnsigned) {
  writeIdentity("0\n0\n-1\n0\nid\n");
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6"), "project_iteration=18446744073709551615\n");
}

TEST_F(EnvironmentData, EnvironmentTextReportsTheIterationInPlainDigitsUnderTheHostsLocale) {
  writeIdentity("0\n0\n1234567\n0\nid\n");
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6"), "project_iteration=1234567\n");
}

TEST_F(EnvironmentData, EnvironmentTextReportsTheIdentifierUpToItsFirstNul) {
  writeIdentity("0\n0\n7\n0\nfront\0back\n"s);
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6"), "project_id=front\n");
}

TEST_F(EnvironmentData, EnvironmentTextReportsAnEmptyIdentifier) {
  writeIdentity("");
  EXPECT_EQ(factsOf("a#1#b#2#c#3#d#4#e#5#f#6"), "project_id=\nproject_iteration=1\n");
}

TEST_F(EnvironmentData, EnvironmentTextThatIsNullThrowsTheTextThatHostsKnow) {
  library.describeEnvironment(std::nullopt);
  try {
    handler.prepareVestraData();
    FAIL() << "nothing was thrown";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
  }
}

}  // namespace
}  // namespace Oza
