#ifndef VESTRA_TESTS_SUPPORT_INTERPOSED_CLOCK_H
#define VESTRA_TESTS_SUPPORT_INTERPOSED_CLOCK_H

#include <ctime>

namespace vestra_test {

/// Makes `time` give one moment. The program that links this has a `time` of its
/// own, which tells the real time while there is no such object.
class ScopedTime {
 public:
  explicit ScopedTime(std::time_t moment);
  ScopedTime(const ScopedTime&) = delete;
  ScopedTime& operator=(const ScopedTime&) = delete;
  ~ScopedTime();
};

}  // namespace vestra_test

#endif
