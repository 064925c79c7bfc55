#include "files/time_budget.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace Oza {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr nanoseconds LONGEST_PAUSE = std::chrono::milliseconds(4);  // NOMUTATE(boundary): any is right.

// By TIMER_ABSTIME. A relative sleep that restarts with its remainder never ends when
// signals come faster than the timer's slack (50 us), by which each remainder is rounded up.
void sleepUntil(steady_clock::time_point deadline) {
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(deadline.time_since_epoch());
  const auto rest = std::chrono::duration_cast<nanoseconds>(deadline.time_since_epoch() - whole);
  const std::timespec when{whole.count(), rest.count()};
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR &&
         steady_clock::now() < deadline) {
  }
}

}  // namespace

bool TimeBudget::pause(nanoseconds reserve) {
  if (left <= reserve) {
    return false;
  }
  const auto begin = steady_clock::now();
  sleepUntil(begin + std::min(next, left - reserve));
  left -= steady_clock::now() - begin;
  next = std::min(2 * next, LONGEST_PAUSE);
  return true;
}

}  // namespace Oza
