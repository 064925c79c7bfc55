#ifndef VESTRA_TESTS_SUPPORT_TIME_LIMIT_H
#define VESTRA_TESTS_SUPPORT_TIME_LIMIT_H

#include <unistd.h>

namespace vestra_test {

/// Ends the process by the alarm signal when it lives longer than the given number
/// of seconds: for code that must not block.
class TimeLimit {
 public:
  explicit TimeLimit(unsigned int seconds) { alarm(seconds); }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() { alarm(0); }
};

}  // namespace vestra_test

#endif
