#include "facts/times.h"

#include <algorithm>
#include <ctime>
#include <limits>

#include <fmt/format.h>

namespace vestra::inspect {

// A time that no calendar reaches is told as its number.
std::string timeText(std::int64_t seconds) {
  constexpr std::int64_t endOfCalendar = 253402300800;
  if (seconds < -62135596800 || seconds >= endOfCalendar) {
    return fmt::format("second {}", seconds);
  }
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  localtime_r(&time, &local);
  char text[64] = "";
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %Z", &local);
  return text;
}

std::int64_t between(std::int64_t begin, std::int64_t end) {
  std::int64_t time = 0;
  return __builtin_sub_overflow(end, begin, &time) ? std::numeric_limits<std::int64_t>::max() : time;
}

std::string durationText(std::int64_t seconds) {
  if (seconds < 3600) {
    return fmt::format("{} min", std::max<std::int64_t>(1, (seconds + 30) / 60));
  }
  return seconds < 172800 ? fmt::format("{} h {} min", seconds / 3600, seconds % 3600 / 60)
                          : fmt::format("{} days", seconds / 86400);
}

}  // namespace vestra::inspect
