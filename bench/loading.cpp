#include "process.h"
#include "rows.h"

namespace vestra_bench {
namespace {

constexpr int STARTS = 1000;

Spread compareStarts() {
  std::vector<Pair> rounds;
  for (int round = 0; round < STARTS; ++round) {
    rounds.push_back({lifetimeOf({START_WITH_LIBRARY}), lifetimeOf({START_WITH_EMPTY_LIBRARY})});
  }
  return ratiosOf(rounds);
}

}  // namespace

void measureLoading(const Take& take) {
  take({"starting a program with the library, 1000 times", "with an empty library", 1.15, compareStarts()});
}

}  // namespace vestra_bench
