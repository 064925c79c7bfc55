#ifndef VESTRA_TESTS_SUPPORT_TIME_LIMIT_H
#define VESTRA_TESTS_SUPPORT_TIME_LIMIT_H

#include <unistd.h>

namespace vestra_test {

/// Ends the process by the alarm signal when code blocks that must not. No machine is so
/// busy that anything else takes that long.
class TimeLimit {
 public:
  TimeLimit() { alarm(SECONDS); }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() { alarm(0); }

 private:
  static constexpr unsigned int SECONDS = 300;
};

}  // namespace vestra_test

#endif
