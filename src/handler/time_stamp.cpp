#include "handler/time_stamp.h"

namespace Oza {

// localtime_r leaves the static buffer of the host's localtime calls alone. Unlike
// localtime, it may ignore a changed TZ without tzset.
std::string timeStamp(std::time_t time) {
  std::tm local{};
  tzset();
  localtime_r(&time, &local);
  char text[16] = "";
  std::strftime(text, sizeof text, "%j%Y%H", &local);
  return text;
}

}  // namespace Oza
