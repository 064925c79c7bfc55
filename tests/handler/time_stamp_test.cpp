#include <ctime>

#include "handler/time_stamp.h"
#include "handler/vestra_handler.h"
#include "support/interposed/c_library.h"
#include "support/test.h"

namespace Oza {
namespace {

struct Moment {
  std::time_t time;
  const char* zone;
  const char* stamp;
};

constexpr Moment MOMENTS[] = {{1700000000, "UTC", "318202322"},
                              // Filled with zeros.
                              {1672531200, "UTC", "001202300"},
                              {1675285199, "UTC", "032202320"},
                              {0, "UTC", "001197000"},
                              // The last minutes of an ordinary and of a leap year.
                              {1704067140, "UTC", "365202323"},
                              {1735689599, "UTC", "366202423"},
                              {1735689600, "UTC", "001202500"},
                              // Local time.
                              {1735689540, "XYZ-1", "001202500"},
                              {1735689600, "XYZ+1", "366202423"},
                              {1700000000, "XYZ-5:45", "319202303"},
                              {1719833400, "CET-1CEST,M3.5.0,M10.5.0/3", "183202413"},
                              {1704110400, "CET-1CEST,M3.5.0,M10.5.0/3", "001202413"},
                              // A year of five digits.
                              {253402300800, "UTC", "0011000000"}};

TEST(TimeStamp, IsDayOfTheYearYearAndHourWhateverTheLocale) {
  const ScopedLocale grouping(digitGroupingLocale());
  for (const Moment& moment : MOMENTS) {
    const ScopedEnv zone("TZ", moment.zone);
    EXPECT_EQ(timeStamp(moment.time), moment.stamp) << moment.time << " in " << moment.zone;
  }
}

TEST(TimeStamp, FollowsAZoneThatTheHostChanges) {
  const ScopedTime now(1700000000);
  VestraHandler handler;
  const ScopedEnv utc("TZ", "UTC");
  EXPECT_EQ(handler.getTimeStampSeg(), "318202322");
  const ScopedEnv east("TZ", "XYZ-2");
  EXPECT_EQ(handler.getTimeStampSeg(), "319202300");
}

TEST(TimeStamp, LeavesTheHostsLastLocalTimeAlone) {
  const ScopedEnv utc("TZ", "UTC");
  const std::time_t epoch = 0;
  const std::tm* hosts = std::localtime(&epoch);
  const ScopedTime now(1700000000);
  VestraHandler().getTimeStampSeg();
  EXPECT_EQ(hosts->tm_year, 70);
}

}  // namespace
}  // namespace Oza
