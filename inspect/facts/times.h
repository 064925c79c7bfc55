#ifndef VESTRA_INSPECT_FACTS_TIMES_H
#define VESTRA_INSPECT_FACTS_TIMES_H

#include <cstdint>
#include <string>

namespace vestra::inspect {

/// A time as people write it, in the local zone.
std::string timeText(std::int64_t seconds);
/// "21 h 4 min", "365 days"
std::string durationText(std::int64_t seconds);
/// The time from `begin` to `end`; the greatest that there is where it is greater.
std::int64_t between(std::int64_t begin, std::int64_t end);

}  // namespace vestra::inspect

#endif
