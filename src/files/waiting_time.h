#ifndef VESTRA_FILES_WAITING_TIME_H
#define VESTRA_FILES_WAITING_TIME_H

#include <chrono>

namespace Oza {

/// How long one report may wait for other hosts, in all: a quarter of a second.
class WaitingTime {
 public:
  static constexpr std::chrono::nanoseconds BOUND = std::chrono::milliseconds(250);

  /// Sleeps for a moment, which is longer each time.
  /// @param kept  What has to be left for another wait.
  /// @return False, without sleeping, when no more than that is left.
  bool pause(std::chrono::nanoseconds kept = std::chrono::nanoseconds::zero());

 private:
  std::chrono::nanoseconds left = BOUND;
  std::chrono::nanoseconds next = std::chrono::microseconds(250);
};

}  // namespace Oza

#endif
