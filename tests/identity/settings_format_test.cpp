#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "identity/vestra_setting.h"
#include "support/scoped_locale.h"

namespace Oza {
namespace {

using namespace std::string_literals;

using Properties = std::map<std::string, std::string>;

Properties propertiesIn(const std::string& text, Properties properties = {}) {
  std::istringstream in(text);
  readSettings(in, properties);
  return properties;
}

TEST(SettingsFormat, LineIsAKeyAndAValue) {
  EXPECT_EQ(propertiesIn("RandomID=abc\n"), (Properties{{"RandomID", "abc"}}));
}

TEST(SettingsFormat, LastLineNeedsNoEnd) {
  EXPECT_EQ(propertiesIn("a=1\nb=2"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, FirstLineWithAKeyWins) {
  EXPECT_EQ(propertiesIn("k=1\nk=2\n"), (Properties{{"k", "1"}}));
  EXPECT_EQ(propertiesIn("k=\nk=2\n"), (Properties{{"k", ""}}));
}

TEST(SettingsFormat, WhatTheTableHoldsWins) {
  EXPECT_EQ(propertiesIn("k=2\nl=3\n", {{"k", "1"}}), (Properties{{"k", "1"}, {"l", "3"}}));
}

TEST(SettingsFormat, KeysDifferByLetterCase) {
  EXPECT_EQ(propertiesIn("k=1\nK=2\n"), (Properties{{"K", "2"}, {"k", "1"}}));
}

TEST(SettingsFormat, LineIsTrimmedAsAWhole) {
  EXPECT_EQ(propertiesIn("  RandomID=abc \r\n"), (Properties{{"RandomID", "abc"}}));
  EXPECT_EQ(propertiesIn("\t\v\f RandomID=abc\t\v\f \r\n"), (Properties{{"RandomID", "abc"}}));
}

TEST(SettingsFormat, BlanksAroundTheEqualsSignAreKept) {
  EXPECT_EQ(propertiesIn("RandomID = abc\n"), (Properties{{"RandomID ", " abc"}}));
  EXPECT_EQ(propertiesIn("a b=c d\n"), (Properties{{"a b", "c d"}}));
}

TEST(SettingsFormat, ValueMayBeEmpty) { EXPECT_EQ(propertiesIn("k=\n"), (Properties{{"k", ""}})); }

TEST(SettingsFormat, KeyMayBeEmpty) {
  EXPECT_EQ(propertiesIn("=v\n"), (Properties{{"", "v"}}));
  EXPECT_EQ(propertiesIn("=\n"), (Properties{{"", ""}}));
}

TEST(SettingsFormat, ThereAreNoComments) {
  EXPECT_EQ(propertiesIn("#k=v\n;l=w\n"), (Properties{{"#k", "v"}, {";l", "w"}}));
}

TEST(SettingsFormat, LineWithTwoEqualsSignsIsDropped) {
  EXPECT_EQ(propertiesIn("k=a=b\nk==b\nk=a=\n==\n"), Properties{});
}

TEST(SettingsFormat, LineWithoutAnEqualsSignIsDropped) { EXPECT_EQ(propertiesIn("kb\n"), Properties{}); }

TEST(SettingsFormat, WhatStandsAroundADroppedLineIsRead) {
  EXPECT_EQ(propertiesIn("a=1\nk=a=b\nkb\nb=2\n"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, EmptyTextGivesAnEmptyTable) { EXPECT_EQ(propertiesIn(""), Properties{}); }

TEST(SettingsFormat, BlankLinesGiveAnEmptyTable) {
  EXPECT_EQ(propertiesIn("\n\n"), Properties{});
  EXPECT_EQ(propertiesIn("  \n\t\n\r\n \v\f\n"), Properties{});
}

TEST(SettingsFormat, CarriageReturnsBeforeLineEndsAreTrimmed) {
  EXPECT_EQ(propertiesIn("a=1\r\nb=2\r\n"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, LoneCarriageReturnEndsNoLine) {
  EXPECT_EQ(propertiesIn("a=1\rb\n"), (Properties{{"a", "1\rb"}}));
  EXPECT_EQ(propertiesIn("a=1\rb=2\r"), Properties{});
}

TEST(SettingsFormat, NulBytesBelongToTheLine) {
  EXPECT_EQ(propertiesIn("k\0y=v\0w\n"s), (Properties{{"k\0y"s, "v\0w"s}}));
  EXPECT_EQ(propertiesIn("\0k=v\0\n"s), (Properties{{"\0k"s, "v\0"s}}));
}

TEST(SettingsFormat, BytesAbove127AreKept) {
  EXPECT_EQ(propertiesIn("\xff\x80=\xc3\xa9\x85\xa0\n"), (Properties{{"\xff\x80", "\xc3\xa9\x85\xa0"}}));
}

TEST(SettingsFormat, ByteOrderMarkBelongsToTheKey) {
  EXPECT_EQ(propertiesIn("\xef\xbb\xbfRandomID=abc\n"), (Properties{{"\xef\xbb\xbfRandomID", "abc"}}));
}

TEST(SettingsFormat, LineOfAMegabyteIsRead) {
  const std::string megabyte(1048576, 'x');
  EXPECT_EQ(propertiesIn("k=" + megabyte + "\nl=1\n"), (Properties{{"k", megabyte}, {"l", "1"}}));
  EXPECT_EQ(propertiesIn(megabyte + "\nl=1\n"), (Properties{{"l", "1"}}));
}

TEST(SettingsFormat, MegabyteOfEqualsSignsIsDropped) {
  EXPECT_EQ(propertiesIn(std::string(1048576, '=') + "\nl=1\n"), (Properties{{"l", "1"}}));
}

TEST(SettingsFormat, EveryTruncationIsReadToItsLastWholePair) {
  const std::string good = "a=1\nRandomID=abc\n";
  for (std::size_t length = 0; length <= good.size(); ++length) {
    Properties expected;
    if (length >= 2) {
      expected["a"] = length == 2 ? "" : "1";
    }
    if (length >= 13) {
      expected["RandomID"] = std::string("abc").substr(0, length - 13);
    }
    EXPECT_EQ(propertiesIn(good.substr(0, length)), expected) << "length " << length;
  }
}

TEST(SettingsFormat, WhiteSpaceIsThatOfTheGlobalLocale) {
  const vestra_test::ScopedLocale odd(vestra_test::oddLettersLocale());
  EXPECT_EQ(propertiesIn("_RandomID=abc__\n"), (Properties{{"RandomID", "abc"}}));
  EXPECT_EQ(propertiesIn(" k=v \n"), (Properties{{" k", "v "}}));
}

RC_GTEST_PROP(SettingsFormat, AnyTextGivesKeysAndValuesWithoutLineEndsAndEqualsSigns,
              (const std::string& text)) {
  for (const auto& [key, value] : propertiesIn(text)) {
    RC_ASSERT(key.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(value.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(text.find(key + "=" + value) != std::string::npos);
  }
}

}  // namespace
}  // namespace Oza
