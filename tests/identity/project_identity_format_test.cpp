#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>

#include "identity/project_identity.h"
#include "support/test.h"

namespace Oza {
namespace {

constexpr std::int64_t INT64_LEAST = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t INT64_MOST = std::numeric_limits<std::int64_t>::max();

ProjectIdentity read(const std::string& text) {
  ProjectIdentity identity;
  readProjectIdentity(text, identity);
  return identity;
}

std::string rewritten(const std::string& text) { return formatProjectIdentity(read(text)); }

TEST(ProjectIdentity, IsReadLineByLineAndWrittenInPlainDecimal) {
  const std::string megabyte(1048576, 'x');
  const struct {
    const char* name;
    std::string text;
    std::string written;
  } rows[] = {
      {"nothing", "", identityText("0", "0", "1", "0", "")},
      {"five lines", "1700000000\n1700000001\n42\n1\nan id = anything\n",
       identityText("1700000000", "1700000001", "42", "1", "an id = anything")},
      {"no end of line 4", "1\n2\n3\n4", identityText("1", "2", "3", "4", "")},
      {"one line", "1\n", identityText("1", "0", "1", "0", "")},
      {"empty lines", "\n\n\n\n\n", identityText("0", "0", "1", "0", "")},
      {"text behind numbers", "13 14\n15.9\n1_0\n1e5\n", identityText("13", "15", "1", "1", "")},
      {"signs behind numbers", "12\00034\n1'000\n"s, identityText("12", "1", "1", "0", "")},
      {"white space before numbers", "  12\n\t13\n\v\f\r14\n 1\n", identityText("12", "13", "14", "1", "")},
      {"a megabyte of blanks", std::string(1048576, ' ') + "12\n", identityText("12", "0", "1", "0", "")},
      {"signs before numbers", "+5\n-6\n+7\n-1\n", identityText("5", "-6", "7", "-1", "")},
      {"other bases", "0x10\n010\n00000000000000000000007\n0b1\n", identityText("0", "10", "7", "0", "")},
      {"the highest numbers", "9223372036854775807\n9223372036854775807\n9223372036854775807\n2147483647\n",
       identityText("9223372036854775807", "9223372036854775807", "9223372036854775807", "2147483647", "")},
      {"the lowest numbers",
       "-9223372036854775808\n-9223372036854775808\n-9223372036854775808\n-2147483648\n",
       identityText("-9223372036854775808", "-9223372036854775808", "9223372036854775808", "-2147483648",
                    "")},
      {"iteration -1", "0\n0\n-1\n", identityText("0", "0", "18446744073709551615", "0", "")},
      {"any byte in the identifier", "1\n2\n3\n4\n \x80\xff\0\tid  \n"s,
       identityText("1", "2", "3", "4", " \x80\xff\0\tid  "s)},
      {"a megabyte of identifier", "1\n2\n3\n4\n" + megabyte + "\n",
       identityText("1", "2", "3", "4", megabyte)},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(rewritten(row.text) == row.written) << row.name << ": " << rewritten(row.text).substr(0, 200);
  }
}

TEST(ProjectIdentity, KeepsAnIdentifierThatTheTextLacks) {
  ProjectIdentity identity;
  identity.projectId = "known";
  readProjectIdentity("1\n2\n3\n4\n", identity);
  EXPECT_EQ(identity.projectId, "known");
  readProjectIdentity("1\n2\n3\n4\n\n", identity);
  EXPECT_EQ(identity.projectId, "");
}

/// A text with one of its first four lines replaced.
std::string withLine(int index, const std::string& line) {
  std::string text;
  for (int i = 0; i < 4; ++i) {
    text += (i == index ? line : "1") + "\n";
  }
  return text;
}

TEST(ProjectIdentity, IsRefusedWhenALineIsNoNumber) {
  for (const std::string& line : {"abc"s, "x12"s, " "s, "\r"s, "-"s, "+"s, "--1"s, "- 1"s, ".5"s, "\xc3\xa9"s,
                                  "\xff"s, "\00012"s, "nan"s}) {
    for (int index = 0; index < 4; ++index) {
      EXPECT_THROW(read(withLine(index, line)), std::invalid_argument) << line << " " << index;
    }
    EXPECT_EQ(read("1\n2\n3\n4\n" + line + "\n").projectId, line);
  }
}

TEST(ProjectIdentity, IsRefusedWhenANumberDoesNotFit) {
  for (const std::string& line : {"9223372036854775808"s, "-9223372036854775809"s, "18446744073709551615"s,
                                  std::string(1048576, '9')}) {
    for (int index = 0; index < 4; ++index) {
      EXPECT_THROW(read(withLine(index, line)), std::out_of_range) << index;
    }
  }
  for (const char* line : {"3000000000", "2147483648", "-2147483649", "9223372036854775807"}) {
    EXPECT_THROW(read(withLine(3, line)), std::out_of_range) << line;
    EXPECT_NO_THROW(read(withLine(2, line))) << line;
  }
}

TEST(ProjectIdentity, IsMergedWithTheStoredRecord) {
  const ProjectIdentity known = read(identityText("1", "2", "3", "0", "known"));
  const auto merged = [&](const std::string& text, bool identifierIsHosts) {
    return formatProjectIdentity(mergedWithStored(known, text, identifierIsHosts));
  };
  const std::string stored = identityText("5", "6", "7", "1", "stored");
  EXPECT_EQ(merged(stored, false), stored);
  EXPECT_EQ(merged(stored, true), identityText("5", "6", "7", "1", "known"));
  EXPECT_EQ(merged(identityText("5", "6", "7", "1", ""), false), identityText("5", "6", "7", "1", "known"));
  EXPECT_EQ(merged("5\n", false), identityText("5", "2", "3", "0", "known"));
  EXPECT_EQ(merged("5\nabc\n", false), formatProjectIdentity(known));
}

RC_GTEST_PROP(ProjectIdentity, IsReadAsItWasWritten,
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

RC_GTEST_PROP(ProjectIdentity, OfAnyTextIsReadOrRefusedWithALogicError, (const std::string& text)) {
  try {
    read(text);
  } catch (const std::logic_error&) {
  }
}

TEST(OnceADay, IsAReportDue) {
  const struct {
    std::int64_t now;
    std::int64_t last;
    bool isDue;
  } rows[] = {
      {1700000000, 0, true},
      {1700000000, 1700000000, false},
      {1700086399, 1700000000, false},
      {1700086400, 1700000000, false},
      {1700086401, 1700000000, true},
      // A time in the future, or long ago.
      {1700000000, 1700000001, false},
      {1700000000, INT64_MOST, false},
      {1700000000, -1, true},
      {1700000000, INT64_LEAST, true},
      {0, INT64_LEAST, true},
      // A clock that stands before the epoch's second day.
      {0, 0, true},
      {86400, 0, true},
      {-86401, 0, true},
      {86400, 1, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(Message() << row.last << " at " << row.now);
    for (const auto product : {Vestra::KELVO, Vestra::TAVLO, static_cast<Vestra::ProductType>(7)}) {
      ProjectIdentity identity;
      identity.lastSendTimeDefault = row.last;
      identity.lastSendTimeType1 = row.now;
      EXPECT_EQ(isReportDue(identity, product, row.now), row.isDue);
      EXPECT_EQ(countAttempt(identity, product, row.now), row.isDue);
      EXPECT_EQ(formatProjectIdentity(identity), identityText(std::to_string(row.isDue ? row.now : row.last),
                                                              std::to_string(row.now), "2", "0", ""));
    }
  }
}

TEST(OnceADay, HasATimeOfItsOwnForTheAlternativeSimulator) {
  ProjectIdentity identity;
  EXPECT_TRUE(countAttempt(identity, Vestra::KELVO_ALT, 1700000000));
  EXPECT_TRUE(countAttempt(identity, Vestra::TAVLO, 1700000001));
  EXPECT_FALSE(countAttempt(identity, Vestra::KELVO_ALT, 1700086400));
  EXPECT_EQ(formatProjectIdentity(identity), identityText("1700000001", "1700000000", "4", "0", ""));
}

}  // namespace
}  // namespace Oza
