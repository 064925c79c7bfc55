#ifndef VESTRA_FILES_TIME_BUDGET_H
#define VESTRA_FILES_TIME_BUDGET_H

#include <chrono>

namespace Oza {

/// The total time that one report may wait for other hosts: 250 ms.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
class TimeBudget {
 public:
  static constexpr std::chrono::nanoseconds TOTAL = std::chrono::milliseconds(250);

  /// Sleeps for 250 us at first, twice as long each time, at most 4 ms. Signals neither
  /// prolong nor shorten it.
  /// @param reserve  Time that must remain for a later wait.
  /// @return False, without sleeping, when no more than the reserve is left.
  bool pause(std::chrono::nanoseconds reserve = std::chrono::nanoseconds::zero());

 private:
  std::chrono::nanoseconds left = TOTAL;
  std::chrono::nanoseconds next = std::chrono::microseconds(250);
};

}  // namespace Oza

#endif
