#ifndef VESTRA_BENCH_PAIRED_H
#define VESTRA_BENCH_PAIRED_H

#include <functional>

#include "spread.h"

namespace vestra_bench {

/// Times two pieces of work in turn, in this process, with Google Benchmark, which
/// repeats each as often as it needs to. In each round the baseline runs before and after
/// the library, so that neither profits from the caches that the other filled.
Spread compareInTurn(const std::function<void()>& ours, const std::function<void()>& baseline);

}  // namespace vestra_bench

#endif
