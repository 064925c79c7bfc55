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

Properties read(const std::string& text, Properties properties = {}) {
  std::istringstream in(text);
  readSettings(in, properties);
  return properties;
}

TEST(SettingsFormat, LineIsAKeyAndAValue) {
  EXPECT_EQ(read("RandomID=abc\n"), (Properties{{"RandomID", "abc"}}));
}

TEST(SettingsFormat, LastLineNeedsNoEnd) {
  EXPECT_EQ(read("a=1\nb=2"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, FirstLineWithAKeyWins) {
  EXPECT_EQ(read("k=1\nk=2\n"), (Properties{{"k", "1"}}));
  EXPECT_EQ(read("k=\nk=2\n"), (Properties{{"k", ""}}));
}

TEST(SettingsFormat, WhatTheTableHoldsWins) {
  EXPECT_EQ(read("k=2\nl=3\n", {{"k", "1"}}), (Properties{{"k", "1"}, {"l", "3"}}));
}

TEST(SettingsFormat, KeysDifferByLetterCase) {
  EXPECT_EQ(read("k=1\nK=2\n"), (Properties{{"K", "2"}, {"k", "1"}}));
}

TEST(SettingsFormat, LineIsTrimmedAsAWhole) {
  EXPECT_EQ(read("  RandomID=abc \r\n"), (Properties{{"RandomID", "abc"}}));
  EXPECT_EQ(read("\t\v\f RandomID=abc\t\v\f \r\n"), (Properties{{"RandomID", "abc"}}));
}

TEST(SettingsFormat, BlanksAroundTheEqualsSignAreKept) {
  EXPECT_EQ(read("RandomID = abc\n"), (Properties{{"RandomID ", " abc"}}));
  EXPECT_EQ(read("a b=c d\n"), (Properties{{"a b", "c d"}}));
}

TEST(SettingsFormat, ValueMayBeEmpty) { EXPECT_EQ(read("k=\n"), (Properties{{"k", ""}})); }

TEST(SettingsFormat, KeyMayBeEmpty) {
  EXPECT_EQ(read("=v\n"), (Properties{{"", "v"}}));
  EXPECT_EQ(read("=\n"), (Properties{{"", ""}}));
}

TEST(SettingsFormat, ThereAreNoComments) {
  EXPECT_EQ(read("#k=v\n;l=w\n"), (Properties{{"#k", "v"}, {";l", "w"}}));
}

TEST(SettingsFormat, LineWithTwoEqualsSignsIsDropped) {
  EXPECT_EQ(read("k=a=b\nk==b\nk=a=\n==\n"), Properties{});
}

TEST(SettingsFormat, LineWithoutAnEqualsSignIsDropped) { EXPECT_EQ(read("kb\n"), Properties{}); }

TEST(SettingsFormat, WhatStandsAroundADroppedLineIsRead) {
  EXPECT_EQ(read("a=1\nk=a=b\nkb\nb=2\n"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, EmptyTextGivesAnEmptyTable) { EXPECT_EQ(read(""), Properties{}); }

TEST(SettingsFormat, BlankLinesGiveAnEmptyTable) {
  EXPECT_EQ(read("\n\n"), Properties{});
  EXPECT_EQ(read("  \n\t\n\r\n \v\f\n"), Properties{});
}

TEST(SettingsFormat, CarriageReturnsBeforeLineEndsAreTrimmed) {
  EXPECT_EQ(read("a=1\r\nb=2\r\n"), (Properties{{"a", "1"}, {"b", "2"}}));
}

TEST(SettingsFormat, LoneCarriageReturnEndsNoLine) {
  EXPECT_EQ(read("a=1\rb\n"), (Properties{{"a", "1\rb"}}));
  EXPECT_EQ(read("a=1\rb=2\r"), Properties{});
}

TEST(SettingsFormat, NulBytesBelongToTheLine) {
  EXPECT_EQ(read("k\0y=v\0w\n"s), (Properties{{"k\0y"s, "v\0w"s}}));
  EXPECT_EQ(read("\0k=v\0\n"s), (Properties{{"\0k"s, "v\0"s}}));
}

TEST(SettingsFormat, BytesAbove127AreKept) {
  EXPECT_EQ(read("\xff\x80=\xc3\xa9\x85\xa0\n"), (Properties{{"\xff\x80", "\xc3\xa9\x85\xa0"}}));
}

TEST(SettingsFormat, ByteOrderMarkBelongsToTheKey) {
  EXPECT_EQ(read("\xef\xbb\xbfRandomID=abc\n"), (Properties{{"\xef\xbb\xbfRandomID", "abc"}}));
}

TEST(SettingsFormat, LineOfAMegabyteIsRead) {
  const std::string megabyte(1048576, 'x');
  EXPECT_EQ(read("k=" + megabyte + "\nl=1\n"), (Properties{{"k", megabyte}, {"l", "1"}}));
  EXPECT_EQ(read(megabyte + "\nl=1\n"), (Properties{{"l", "1"}}));
}

TEST(SettingsFormat, MegabyteOfEqualsSignsIsDropped) {
  EXPECT_EQ(read(std::string(1048576, '=') + "\nl=1\n"), (Properties{{"l", "1"}}));
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
    EXPECT_EQ(read(good.substr(0, length)), expected) << "length " << length;
  }
}

TEST(SettingsFormat, WhiteSpaceIsThatOfTheGlobalLocale) {
  const vestra_test::ScopedLocale odd(vestra_test::oddLettersLocale());
  EXPECT_EQ(read("_RandomID=abc__\n"), (Properties{{"RandomID", "abc"}}));
  EXPECT_EQ(read(" k=v \n"), (Properties{{" k", "v "}}));
}

RC_GTEST_PROP(SettingsFormat, AnyTextGivesKeysAndValuesWithoutLineEndsAndEqualsSigns,
              (const std::string& text)) {
  for (const auto& [key, value] : read(text)) {
    RC_ASSERT(key.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(value.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(text.find(key + "=" + value) != std::string::npos);
  }
}

}  // namespace
}  // namespace Oza
