// Loaded before a host's own libraries: the second that the host takes for the present is in its environment.

#include <cstdlib>
#include <ctime>

// The C library's names of parameters are reserved.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" std::time_t time(std::time_t* out) noexcept {
  const char* moment = std::getenv("VESTRA_TEST_NOW");
  const std::time_t now = moment != nullptr ? std::atoll(moment) : 0;
  if (out != nullptr) {
    *out = now;
  }
  return now;
}
