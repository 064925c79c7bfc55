#ifndef VESTRA_BENCH_SPREAD_H
#define VESTRA_BENCH_SPREAD_H

#include <cstddef>
#include <vector>

namespace vestra_bench {

/// The middle of what several rounds gave, and how far apart they were.
struct Spread {
  double lowerQuartile = 0;
  double median = 0;
  double upperQuartile = 0;
  std::size_t rounds = 0;
};

/// At least one value.
Spread spreadOf(std::vector<double> values);

/// What the two sides of one round took, in any unit.
struct Pair {
  double ours = 0;
  double baseline = 0;
};

/// The spread of the rounds' own ratios: what slows a machine down for a while slows
/// both sides of a round.
Spread ratiosOf(const std::vector<Pair>& rounds);

}  // namespace vestra_bench

#endif
