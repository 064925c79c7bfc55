// Starts two programs in turn, and writes how many nanoseconds of processor time all starts of
// each took:
//
//     start_in_turn COUNT PROGRAM OTHER_PROGRAM

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

#include "support/process.h"

namespace {

double nanoseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
}

/// Of all programs that have ended.
double processorTime() {
  rusage used{};
  getrusage(RUSAGE_CHILDREN, &used);
  return nanoseconds(used.ru_utime) + nanoseconds(used.ru_stime);
}

double nanosecondsOf(const char* program) {
  const double before = processorTime();
  if (vestra_test::waitFor(vestra_test::start({program})) != 0) {
    std::exit(EXIT_FAILURE);
  }
  return processorTime() - before;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  double one = 0;
  double other = 0;
  for (long left = std::strtol(argv[1], nullptr, 10); left > 0; --left) {
    one += nanosecondsOf(argv[2]);
    other += nanosecondsOf(argv[3]);
  }
  std::printf("%.0f %.0f\n", one, other);
  return EXIT_SUCCESS;
}
