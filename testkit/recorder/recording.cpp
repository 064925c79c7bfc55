#include "recorder/recording.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace vestra::testkit {
namespace {

bool isClockHeld = false;
std::time_t clockTime = 0;

}  // namespace

void beginRecording() {
  intercept::carryEnvironment(VARIABLE_PREFIX);
  if (const char* now = intercept::carried("NOW")) {
    clockTime = std::strtoll(now, nullptr, 10);
    isClockHeld = true;
  }
  intercept::recordIn(intercept::carried("RECORD"));
}

NumberText nextNumber() {
  static std::atomic<int> count{0};
  NumberText number{};
  std::snprintf(number.text, sizeof number.text, "%d-%d", getpid(), ++count);
  return number;
}

Digits::Digits(unsigned int number) { std::snprintf(text, sizeof text, "%u", number); }

std::optional<std::time_t> heldClock() { return isClockHeld ? std::optional(clockTime) : std::nullopt; }

}  // namespace vestra::testkit
