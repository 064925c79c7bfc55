#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "handler/vestra_handler.h"
#include "support/interposed/clock.h"
#include "support/scoped_env.h"
#include "support/scoped_locale.h"

namespace Oza {
namespace {

using vestra_test::ScopedEnv;
using vestra_test::ScopedTime;

std::string timeStampAt(std::time_t moment, const std::string& zone) {
  const ScopedTime now(moment);
  const ScopedEnv timeZone("TZ", zone);
  return VestraHandler().getTimeStampSeg();
}

TEST(TimeStamp, TimeStampIsDayOfTheYearYearAndHour) {
  EXPECT_EQ(timeStampAt(1700000000, "UTC"), "318202322");
}

TEST(TimeStamp, TimeStampFillsTheDayAndTheHourWithZeros) {
  EXPECT_EQ(timeStampAt(1672531200, "UTC"), "001202300");
  EXPECT_EQ(timeStampAt(1675285199, "UTC"), "032202320");
}

TEST(TimeStamp, LeapYearsLastMinuteIsOnDay366) { EXPECT_EQ(timeStampAt(1735689540, "UTC"), "366202423"); }

TEST(TimeStamp, OrdinaryYearsLastMinuteIsOnDay365) { EXPECT_EQ(timeStampAt(1704067140, "UTC"), "365202323"); }

TEST(TimeStamp, TimeStampOfTheFollowingSecondIsTheNextYears) {
  EXPECT_EQ(timeStampAt(1735689599, "UTC"), "366202423");
  EXPECT_EQ(timeStampAt(1735689600, "UTC"), "001202500");
}

TEST(TimeStamp, TimeStampIsInLocalTime) {
  EXPECT_EQ(timeStampAt(1735689540, "XYZ-1"), "001202500");
  EXPECT_EQ(timeStampAt(1735689600, "XYZ+1"), "366202423");
  EXPECT_EQ(timeStampAt(1700000000, "XYZ-5:45"), "319202303");
}

TEST(TimeStamp, TimeStampKnowsDaylightSavingTime) {
  EXPECT_EQ(timeStampAt(1719833400, "CET-1CEST,M3.5.0,M10.5.0/3"), "183202413");
  EXPECT_EQ(timeStampAt(1704110400, "CET-1CEST,M3.5.0,M10.5.0/3"), "001202413");
}

TEST(TimeStamp, TimeStampFollowsAZoneThatTheHostChanges) {
  const ScopedTime now(1700000000);
  VestraHandler handler;
  const ScopedEnv utc("TZ", "UTC");
  EXPECT_EQ(handler.getTimeStampSeg(), "318202322");
  const ScopedEnv east("TZ", "XYZ-2");
  EXPECT_EQ(handler.getTimeStampSeg(), "319202300");
}

TEST(TimeStamp, EpochIsTheFirstDayOf1970) { EXPECT_EQ(timeStampAt(0, "UTC"), "001197000"); }

TEST(TimeStamp, TimeStampOfAFiveDigitYearIsTenDigitsLong) {
  EXPECT_EQ(timeStampAt(253402300800, "UTC"), "0011000000");
}

TEST(TimeStamp, TimeStampLeavesTheHostsLastLocalTimeAlone) {
  const ScopedEnv utc("TZ", "UTC");
  const std::time_t epoch = 0;
  const std::tm* hosts = std::localtime(&epoch);
  const ScopedTime now(1700000000);
  VestraHandler().getTimeStampSeg();
  EXPECT_EQ(hosts->tm_year, 70);
}

TEST(TimeStamp, TimeStampIsNotGroupedByTheHostsLocale) {
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  EXPECT_EQ(timeStampAt(1700000000, "UTC"), "318202322");
}

}  // namespace
}  // namespace Oza
