#ifndef VESTRA_HANDLER_TIME_STAMP_H
#define VESTRA_HANDLER_TIME_STAMP_H

#include <ctime>
#include <string>

namespace Oza {

/// The time in a report's checksum: day of the year, year and hour of the local time, nine
/// digits.
std::string timeStamp(std::time_t time);

}  // namespace Oza

#endif
