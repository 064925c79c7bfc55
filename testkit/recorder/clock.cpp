// The calls that tell the time of day stand before the C library's own for everything in
// the process. Clocks that only measure go on.

#include <dlfcn.h>
#include <sys/time.h>

#include "recorder/recording.h"

namespace {

using vestra::testkit::heldClock;

template <typename Function>
Function nextOf(const char* name) {
  return reinterpret_cast<Function>(vestra::intercept::lookUp(RTLD_NEXT, name));
}

}  // namespace

// The C library's names of parameters are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

extern "C" VESTRA_INTERPOSED std::time_t time(std::time_t* out) noexcept {
  static const auto next = nextOf<std::time_t (*)(std::time_t*)>("time");
  const auto held = heldClock();
  if (!held) {
    return next(out);
  }
  if (out != nullptr) {
    *out = *held;
  }
  return *held;
}

extern "C" VESTRA_INTERPOSED int clock_gettime(clockid_t clock, timespec* out) noexcept {
  static const auto next = nextOf<int (*)(clockid_t, timespec*)>("clock_gettime");
  const auto held = heldClock();
  if (!held || (clock != CLOCK_REALTIME && clock != CLOCK_REALTIME_COARSE)) {
    return next(clock, out);
  }
  *out = {*held, 0};
  return 0;
}

extern "C" VESTRA_INTERPOSED int gettimeofday(timeval* out, void* zone) noexcept {
  static const auto next = nextOf<int (*)(timeval*, void*)>("gettimeofday");
  const auto held = heldClock();
  if (!held) {
    return next(out, zone);
  }
  *out = {*held, 0};
  return 0;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
