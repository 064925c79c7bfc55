#ifndef VESTRA_BENCH_PROCESSOR_TIME_H
#define VESTRA_BENCH_PROCESSOR_TIME_H

#include <ctime>

namespace vestra_bench {

/// What this process has used so far, in its own code and in the system's.
inline double processorNanoseconds() {
  timespec used{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) * 1e9 + static_cast<double>(used.tv_nsec);
}

}  // namespace vestra_bench

#endif
