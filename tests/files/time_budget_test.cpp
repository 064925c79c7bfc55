#include "files/time_budget.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <ctime>

#include "support/test.h"

namespace Oza {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

void sendSignals(std::chrono::nanoseconds interval) {
  std::signal(SIGUSR1, [](int) {});
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGUSR1;
  timer_t timer{};
  const itimerspec times{{0, interval.count()}, {0, interval.count()}};
  timer_create(CLOCK_MONOTONIC, &event, &timer);
  timer_settime(timer, 0, &times, nullptr);
}

/// How long a new budget lasts.
milliseconds used() {
  const auto begin = steady_clock::now();
  for (TimeBudget budget; budget.pause();) {
  }
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

TEST(TimeBudget, LastsAQuarterOfASecond) { EXPECT_GE(used(), milliseconds(250)); }

// Closer than the timer's slack, which is 50 us.
TEST(TimeBudget, FrequentSignalsNeitherProlongNorShortenIt) {
  const std::string time = inChildProcess([] {
    alarm(60);
    sendSignals(std::chrono::microseconds(20));
    return std::to_string(used().count());
  });
  EXPECT_GE(std::stoi(time), 250);
}

TEST(TimeBudget, ReserveIsKeptForAnotherWait) {
  TimeBudget budget;
  while (budget.pause(TimeBudget::TOTAL - milliseconds(1))) {
  }
  EXPECT_TRUE(budget.pause());
}

}  // namespace
}  // namespace Oza
