#include "handler/time_stamp.h"

namespace Oza {

// The host may have threads and a time zone that it changes: its own localtime
// buffer stays untouched, and the zone is read anew as localtime would.
std::string timeStamp(std::time_t time) {
  std::tm local{};
  tzset();
  localtime_r(&time, &local);
  char text[16] = "";
  std::strftime(text, sizeof text, "%j%Y%H", &local);
  return text;
}

}  // namespace Oza
