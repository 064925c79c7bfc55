#ifndef VESTRA_FILES_TIME_BUDGET_H
#define VESTRA_FILES_TIME_BUDGET_H

#include <chrono>

namespace Oza {

/// How long one report may wait for other hosts, in all: a quarter of a second.
class TimeBudget {
 public:
  static constexpr std::chrono::nanoseconds TOTAL = std::chrono::milliseconds(250);

  /// Sleeps for a moment, which is longer each time. Signals neither prolong nor shorten it.
  /// @param reserve  What has to be left for another wait.
  /// @return False, without sleeping, when no more than that is left.
  bool pause(std::chrono::nanoseconds reserve = std::chrono::nanoseconds::zero());

 private:
  std::chrono::nanoseconds left = TOTAL;
  std::chrono::nanoseconds next = std::chrono::microseconds(250);
};

}  // namespace Oza

#endif
