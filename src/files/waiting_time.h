#ifndef VESTRA_FILES_WAITING_TIME_H
#define VESTRA_FILES_WAITING_TIME_H

#include <chrono>

namespace Oza {

/// How long one report may wait for other hosts, in all: a quarter of a second.
class WaitingTime {
 public:
  static constexpr std::chrono::nanoseconds BOUND = std::chrono::milliseconds(250);

  /// Sleeps for a moment, which is longer each time.
  /// @return False, without sleeping, when nothing is left.
  bool pause();

 private:
  std::chrono::nanoseconds left = BOUND;
  std::chrono::nanoseconds next = std::chrono::microseconds(250);
};

}  // namespace Oza

#endif
