#ifndef VESTRA_BENCH_PAIRED_H
#define VESTRA_BENCH_PAIRED_H

#include <functional>

#include "spread.h"

namespace vestra_bench {

/// Times two pieces of work in turn, in this process, with Google Benchmark, which
/// repeats each as often as it needs to. In each round the baseline comes before ours and
/// once more behind it, so that neither gains by what the other left in the caches.
Spread compareInTurn(const std::function<void()>& ours, const std::function<void()>& baseline);

}  // namespace vestra_bench

#endif
