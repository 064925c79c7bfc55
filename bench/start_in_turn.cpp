// Starts two programs in turn, and writes how many nanoseconds all starts of each took, from
// the start to the end as their parent sees it:
//
//     start_in_turn COUNT PROGRAM OTHER_PROGRAM

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "support/process.h"

namespace {

double nanosecondsOf(const char* program) {
  const auto begin = std::chrono::steady_clock::now();
  if (vestra_test::waitFor(vestra_test::start({program})) != 0) {
    std::exit(EXIT_FAILURE);
  }
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count();
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
