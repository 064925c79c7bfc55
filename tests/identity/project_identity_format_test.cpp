#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "identity/project_identity.h"

namespace Oza {
namespace {

using namespace std::string_literals;

constexpr std::int64_t INT64_LEAST = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t INT64_MOST = std::numeric_limits<std::int64_t>::max();

using Lines = std::array<std::string, 5>;

ProjectIdentity read(const std::string& text) {
  ProjectIdentity identity;
  readProjectIdentity(text, identity);
  return identity;
}

/// The five lines that a record is written as.
Lines written(const ProjectIdentity& identity) {
  std::istringstream in(formatProjectIdentity(identity));
  Lines lines;
  for (std::string& line : lines) {
    EXPECT_TRUE(std::getline(in, line));
  }
  EXPECT_FALSE(in.eof());
  EXPECT_EQ(in.peek(), std::istringstream::traits_type::eof());
  return lines;
}

Lines rewritten(const std::string& text) { return written(read(text)); }

TEST(ProjectIdentity, IdentityOfANewProjectIsWrittenAsFiveLines) {
  EXPECT_EQ(written(ProjectIdentity()), (Lines{"0", "0", "1", "0", ""}));
}

TEST(ProjectIdentity, IdentityIsWrittenInPlainDecimal) {
  ProjectIdentity identity;
  identity.lastSendTimeDefault = 1700000000;
  identity.lastSendTimeType1 = -1;
  identity.iteration = 42;
  identity.orbeloFlow = 1;
  identity.projectId = "an id = anything";
  EXPECT_EQ(written(identity), (Lines{"1700000000", "-1", "42", "1", "an id = anything"}));
}

TEST(ProjectIdentity, IdentityIsWrittenToTheEdgesOfItsTypes) {
  ProjectIdentity identity;
  identity.lastSendTimeDefault = INT64_LEAST;
  identity.lastSendTimeType1 = INT64_MOST;
  identity.iteration = std::numeric_limits<std::uint64_t>::max();
  identity.orbeloFlow = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(written(identity), (Lines{"-9223372036854775808", "9223372036854775807", "18446744073709551615",
                                      "-2147483648", ""}));
}

/// A text and the lines as which it is written again.
struct ReadText {
  const char* what;
  std::string text;
  Lines written;
};

TEST(ProjectIdentity, IsReadLineByLine) {
  const ReadText rows[] = {
      {"five lines",
       "1700000000\n1700000001\n42\n1\n3f2a9c4e\n",
       {"1700000000", "1700000001", "42", "1", "3f2a9c4e"}},
      {"no end of line 5", "1\n2\n3\n4\nid", {"1", "2", "3", "4", "id"}},
      {"no end of line 4", "1\n2\n3\n4", {"1", "2", "3", "4", ""}},
      {"nothing", "", {"0", "0", "1", "0", ""}},
      {"empty lines", "\n\n\n\n\n", {"0", "0", "1", "0", ""}},
      {"some empty lines", "\n2\n\n4\nid\n", {"0", "2", "1", "4", "id"}},
      {"one line", "1\n", {"1", "0", "1", "0", ""}},
      {"two lines", "1\n2\n", {"1", "2", "1", "0", ""}},
      {"three lines", "1\n2\n3\n", {"1", "2", "3", "0", ""}},
      {"six lines", "1\n2\n3\n4\nid\nabc\n", {"1", "2", "3", "4", "id"}},
      {"text behind numbers", "12x\n13 14\n15.9\n1e5\n", {"12", "13", "15", "1", ""}},
      {"signs behind numbers",
       "12\0"
       "34\n1'000\n1,000\n1_0\n"s,
       {"12", "1", "1", "1", ""}},
      {"white space before numbers", "  12\n\t13\n\v\f\r14\n 1\n", {"12", "13", "14", "1", ""}},
      {"a megabyte of blanks", std::string(1048576, ' ') + "12\n", {"12", "0", "1", "0", ""}},
      {"signs before numbers", "+5\n-6\n+7\n-1\n", {"5", "-6", "7", "-1", ""}},
      {"other bases", "0x10\n010\n00000000000000000000007\n0b1\n", {"0", "10", "7", "0", ""}},
      {"carriage returns", "1\r\n2\r\n3\r\n4\r\nid\r\n", {"1", "2", "3", "4", "id\r"}},
      {"the highest numbers",
       "9223372036854775807\n9223372036854775807\n9223372036854775807\n2147483647\n",
       {"9223372036854775807", "9223372036854775807", "9223372036854775807", "2147483647", ""}},
      {"the lowest numbers",
       "-9223372036854775808\n-9223372036854775808\n-9223372036854775808\n-2147483648\n",
       {"-9223372036854775808", "-9223372036854775808", "9223372036854775808", "-2147483648", ""}},
      {"iteration -1", "0\n0\n-1\n", {"0", "0", "18446744073709551615", "0", ""}},
      {"blanks in the identifier",
       "1\n2\n3\n4\n  spaced \t id  \n",
       {"1", "2", "3", "4", "  spaced \t id  "}},
      {"any byte in the identifier", "1\n2\n3\n4\n\x80\xff\0id\n"s, {"1", "2", "3", "4", "\x80\xff\0id"s}},
  };
  for (const ReadText& row : rows) {
    EXPECT_EQ(rewritten(row.text), row.written) << row.what;
  }
}

TEST(ProjectIdentity, MissingIdentifierLeavesTheOneThatIsKnown) {
  ProjectIdentity identity;
  identity.projectId = "known";
  readProjectIdentity("1\n2\n3\n4\n", identity);
  EXPECT_EQ(identity.projectId, "known");
}

TEST(ProjectIdentity, EmptyIdentifiersLineIsAnEmptyIdentifier) {
  ProjectIdentity identity;
  identity.projectId = "known";
  readProjectIdentity("1\n2\n3\n4\n\n", identity);
  EXPECT_EQ(identity.projectId, "");
}

TEST(ProjectIdentity, IdentifierMayBeAMegabyteLong) {
  const std::string megabyte(1048576, 'x');
  EXPECT_EQ(read("1\n2\n3\n4\n" + megabyte + "\n").projectId, megabyte);
}

/// A line and what to call it.
struct NamedLine {
  const char* name;
  std::string line;
};

void PrintTo(const NamedLine& named, std::ostream* out) { *out << named.name; }

std::string nameOf(const testing::TestParamInfo<NamedLine>& test) { return test.param.name; }

class NotANumber : public testing::TestWithParam<NamedLine> {};

TEST_P(NotANumber, WordOnAnyOfTheFirstFourLinesThrowsInvalidArgument) {
  const std::string line = GetParam().line + "\n";
  EXPECT_THROW(read(line), std::invalid_argument);
  EXPECT_THROW(read("1\n" + line), std::invalid_argument);
  EXPECT_THROW(read("1\n2\n" + line), std::invalid_argument);
  EXPECT_THROW(read("1\n2\n3\n" + line), std::invalid_argument);
}

TEST_P(NotANumber, WordOnTheFifthLineIsAnIdentifier) {
  const std::string line = GetParam().line;
  EXPECT_EQ(read("1\n2\n3\n4\n" + line + "\n").projectId, line);
}

INSTANTIATE_TEST_SUITE_P(ProjectIdentity, NotANumber,
                         testing::Values(NamedLine{"AWord", "abc"}, NamedLine{"AWordWithDigits", "x12"},
                                         NamedLine{"ABlank", " "}, NamedLine{"ACarriageReturn", "\r"},
                                         NamedLine{"ALoneMinus", "-"}, NamedLine{"ALonePlus", "+"},
                                         NamedLine{"TwoSigns", "--1"}, NamedLine{"ASignApart", "- 1"},
                                         NamedLine{"ALeadingPoint", ".5"},
                                         NamedLine{"ALetterAbove127", "\xc3\xa9"},
                                         NamedLine{"AByteAbove127", "\xff"},
                                         NamedLine{"ALeadingNul",
                                                   "\0"
                                                   "12"s},
                                         NamedLine{"NotANumberInWords", "nan"}, NamedLine{"AComment", "#1"}),
                         nameOf);

class NumberOutOfRange : public testing::TestWithParam<NamedLine> {};

TEST_P(NumberOutOfRange, LargeNumberOnAnyOfTheFirstFourLinesThrowsOutOfRange) {
  const std::string line = GetParam().line + "\n";
  EXPECT_THROW(read(line), std::out_of_range);
  EXPECT_THROW(read("1\n" + line), std::out_of_range);
  EXPECT_THROW(read("1\n2\n" + line), std::out_of_range);
  EXPECT_THROW(read("1\n2\n3\n" + line), std::out_of_range);
}

INSTANTIATE_TEST_SUITE_P(ProjectIdentity, NumberOutOfRange,
                         testing::Values(NamedLine{"TwoToThe63", "9223372036854775808"},
                                         NamedLine{"BelowMinusTwoToThe63", "-9223372036854775809"},
                                         NamedLine{"TheUnsignedMost", "18446744073709551615"},
                                         NamedLine{"AMegabyteOfNines", std::string(1048576, '9')}),
                         nameOf);

class FlagOutOfRange : public testing::TestWithParam<NamedLine> {};

TEST_P(FlagOutOfRange, LargeFlagOnTheFourthLineThrowsOutOfRange) {
  EXPECT_THROW(read("1\n2\n3\n" + GetParam().line + "\n"), std::out_of_range);
}

TEST_P(FlagOutOfRange, LargeFlagFitsTheLinesAbove) {
  const std::string line = GetParam().line + "\n";
  EXPECT_NO_THROW(read(line + line + line));
}

INSTANTIATE_TEST_SUITE_P(ProjectIdentity, FlagOutOfRange,
                         testing::Values(NamedLine{"ThreeThousandMillion", "3000000000"},
                                         NamedLine{"TwoToThe31", "2147483648"},
                                         NamedLine{"BelowMinusTwoToThe31", "-2147483649"},
                                         NamedLine{"TheSigned64BitMost", "9223372036854775807"}),
                         nameOf);

TEST(ProjectIdentity, EveryTruncationOfAGoodTextIsReadToItsEnd) {
  const std::string good = "1700\n1701\n42\n1\nabc\n";
  const Lines expected[] = {{"0", "0", "1", "0", ""},          // ""
                            {"1", "0", "1", "0", ""},          // "1"
                            {"17", "0", "1", "0", ""},         // "17"
                            {"170", "0", "1", "0", ""},        // "170"
                            {"1700", "0", "1", "0", ""},       // "1700"
                            {"1700", "0", "1", "0", ""},       // and the line end
                            {"1700", "1", "1", "0", ""},       // "1"
                            {"1700", "17", "1", "0", ""},      // "17"
                            {"1700", "170", "1", "0", ""},     // "170"
                            {"1700", "1701", "1", "0", ""},    // "1701"
                            {"1700", "1701", "1", "0", ""},    // and the line end
                            {"1700", "1701", "4", "0", ""},    // "4"
                            {"1700", "1701", "42", "0", ""},   // "42"
                            {"1700", "1701", "42", "0", ""},   // and the line end
                            {"1700", "1701", "42", "1", ""},   // "1"
                            {"1700", "1701", "42", "1", ""},   // and the line end
                            {"1700", "1701", "42", "1", "a"},  // "a"
                            {"1700", "1701", "42", "1", "ab"}, {"1700", "1701", "42", "1", "abc"},
                            {"1700", "1701", "42", "1", "abc"}};
  ASSERT_EQ(std::size(expected), good.size() + 1);
  for (std::size_t length = 0; length <= good.size(); ++length) {
    EXPECT_EQ(rewritten(good.substr(0, length)), expected[length]) << "length " << length;
  }
}

RC_GTEST_PROP(ProjectIdentity, IdentityComesBackAsItWasWritten,
              (std::int64_t defaultTime, std::int64_t type1Time, std::int64_t iteration, std::int32_t flow)) {
  ProjectIdentity identity;
  identity.lastSendTimeDefault = defaultTime;
  identity.lastSendTimeType1 = type1Time;
  identity.iteration = static_cast<std::uint64_t>(iteration) & 0x7FFFFFFFFFFFFFFFU;
  identity.orbeloFlow = flow;
  identity.projectId = *rc::gen::container<std::string>(rc::gen::distinctFrom('\n'));
  const ProjectIdentity back = read(formatProjectIdentity(identity));
  RC_ASSERT(back.lastSendTimeDefault == identity.lastSendTimeDefault);
  RC_ASSERT(back.lastSendTimeType1 == identity.lastSendTimeType1);
  RC_ASSERT(back.iteration == identity.iteration);
  RC_ASSERT(back.orbeloFlow == identity.orbeloFlow);
  RC_ASSERT(back.projectId == identity.projectId);
}

RC_GTEST_PROP(ProjectIdentity, IdentityOfAnyTextIsReadOrRefusedWithALogicError, (const std::string& text)) {
  try {
    read(text);
  } catch (const std::logic_error&) {
  }
}

/// Whether the simulator's report is due.
bool isDue(std::int64_t now, std::int64_t lastSendTime) {
  ProjectIdentity identity;
  identity.lastSendTimeDefault = lastSendTime;
  identity.lastSendTimeType1 = now;
  return isReportDue(identity, Vestra::KELVO, now);
}

TEST(OnceADay, SecondReportIsDueAfterMoreThanADay) {
  EXPECT_FALSE(isDue(1700000000, 1700000000));
  EXPECT_FALSE(isDue(1700000000 + 86399, 1700000000));
  EXPECT_FALSE(isDue(1700000000 + 86400, 1700000000));
  EXPECT_TRUE(isDue(1700000000 + 86401, 1700000000));
}

TEST(OnceADay, FirstReportIsDue) { EXPECT_TRUE(isDue(1700000000, 0)); }

TEST(OnceADay, TimeInTheFutureHoldsReportsBack) {
  EXPECT_FALSE(isDue(1700000000, 1700000001));
  EXPECT_FALSE(isDue(1700000000, INT64_MOST));
}

TEST(OnceADay, ReportIsDueAfterAVeryOldOne) {
  EXPECT_TRUE(isDue(1700000000, -1));
  EXPECT_TRUE(isDue(1700000000, INT64_LEAST));
  EXPECT_TRUE(isDue(0, INT64_LEAST));
}

TEST(OnceADay, FirstReportIsDueWhereTheClockStandsBeforeTheEpochsSecondDay) {
  EXPECT_TRUE(isDue(0, 0));
  EXPECT_TRUE(isDue(86400, 0));
  EXPECT_TRUE(isDue(-86401, 0));
  EXPECT_FALSE(isDue(86400, 1));
}

TEST(OnceADay, AlternativeSimulatorHasATimeOfItsOwn) {
  ProjectIdentity identity;
  EXPECT_TRUE(countAttempt(identity, Vestra::KELVO_ALT, 1700000000));
  EXPECT_EQ(written(identity), (Lines{"0", "1700000000", "2", "0", ""}));
  EXPECT_TRUE(countAttempt(identity, Vestra::TAVLO, 1700000001));
  EXPECT_EQ(written(identity), (Lines{"1700000001", "1700000000", "3", "0", ""}));
}

TEST(OnceADay, EveryAttemptIsCounted) {
  ProjectIdentity identity;
  identity.lastSendTimeDefault = 1700000000;
  EXPECT_FALSE(countAttempt(identity, Vestra::KELVO, 1700000000));
  EXPECT_EQ(written(identity), (Lines{"1700000000", "0", "2", "0", ""}));
}

}  // namespace
}  // namespace Oza
