#include <string>
#include <vector>

#include "process.h"
#include "rows.h"

namespace vestra_bench {
namespace {

constexpr int ROUNDS = 11;
constexpr int STARTS = 1000;

Pair startInTurn(const std::string& program) {
  Pair round;
  for (int start = 0; start < STARTS; ++start) {
    round.ours += lifetimeOf({program});
    round.baseline += lifetimeOf({START_WITH_EMPTY_LIBRARY});
  }
  return round;
}

Spread compareStarts(const std::string& program) {
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS; ++round) {
    rounds.push_back(startInTurn(program));
  }
  return ratiosOf(rounds);
}

}  // namespace

void measureLoading(const Take& take) {
  take({"1000 starts of a program with the library",
        "with an empty library",
        {},
        compareStarts(START_WITH_LIBRARY)});
#ifdef START_WITH_PRIVATE_BOOST
  take({"the same with a private Boost", "with an empty library", 1.10,
        compareStarts(START_WITH_PRIVATE_BOOST)});
#endif
}

}  // namespace vestra_bench
