#include "support/interposed/clock.h"

#include <optional>

namespace vestra_test {
namespace {

std::optional<std::time_t> setMoment;

std::time_t realTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec;
}

}  // namespace

ScopedTime::ScopedTime(std::time_t moment) { setMoment = moment; }

ScopedTime::~ScopedTime() { setMoment.reset(); }

}  // namespace vestra_test

// The C library's names of parameters are reserved.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" std::time_t time(std::time_t* out) noexcept {
  const std::time_t now = vestra_test::setMoment.value_or(vestra_test::realTime());
  if (out != nullptr) {
    *out = now;
  }
  return now;
}
