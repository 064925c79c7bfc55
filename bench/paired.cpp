#include "paired.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace vestra_bench {
namespace {

constexpr int ROUNDS = 11;
constexpr double SECONDS_OF_A_SIDE = 0.05;

/// Keeps the time of one repetition; prints nothing.
class Collector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override { nanoseconds = runs.at(0).GetAdjustedRealTime(); }

  double nanoseconds = 0;
};

double timeOf(const char* name) {
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector, name);
  return collector.nanoseconds;
}

void registerAs(const char* name, const std::function<void()>& work) {
  benchmark::RegisterBenchmark(name, [&work](benchmark::State& state) {
    for ([[maybe_unused]] auto each : state) {
      work();
    }
  })->MinTime(SECONDS_OF_A_SIDE);
}

}  // namespace

Spread compareInTurn(const std::function<void()>& ours, const std::function<void()>& baseline) {
  registerAs("ours", ours);
  registerAs("baseline", baseline);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS; ++round) {
    const double baselineBefore = timeOf("baseline");
    const double oursBetween = timeOf("ours");
    rounds.push_back({oursBetween, (baselineBefore + timeOf("baseline")) / 2});
  }
  benchmark::ClearRegisteredBenchmarks();
  return ratiosOf(rounds);
}

}  // namespace vestra_bench
