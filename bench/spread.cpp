#include "spread.h"

#include <algorithm>

namespace vestra_bench {
namespace {

/// The quantile of sorted values, interpolated between neighbours.
double quantile(const std::vector<double>& sorted, double share) {
  const double position = share * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(position);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  const double part = position - static_cast<double>(below);
  return sorted[below] + part * (sorted[above] - sorted[below]);
}

}  // namespace

Spread spreadOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return {quantile(values, 0.25), quantile(values, 0.5), quantile(values, 0.75), values.size()};
}

Spread ratiosOf(const std::vector<Pair>& rounds) {
  std::vector<double> ratios;
  ratios.reserve(rounds.size());
  for (const Pair& round : rounds) {
    ratios.push_back(round.ours / round.baseline);
  }
  return spreadOf(ratios);
}

}  // namespace vestra_bench
