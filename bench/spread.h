#ifndef VESTRA_BENCH_SPREAD_H
#define VESTRA_BENCH_SPREAD_H

#include <cstddef>
#include <vector>

namespace vestra_bench {

/// Median and quartiles of several rounds.
struct Spread {
  double lowerQuartile = 0;
  double median = 0;
  double upperQuartile = 0;
  std::size_t rounds = 0;
};

/// @param values  At least one.
Spread spreadOf(std::vector<double> values);

/// The two sides of one round, in any unit.
struct Pair {
  double ours = 0;
  double baseline = 0;
};

/// The spread of the rounds' ratios: a disturbance of the machine slows both sides of a
/// round.
Spread ratiosOf(const std::vector<Pair>& rounds);

}  // namespace vestra_bench

#endif
