#ifndef VESTRA_BENCH_TRACED_CALLS_H
#define VESTRA_BENCH_TRACED_CALLS_H

#include "process.h"

namespace vestra_bench {

/// How many system calls a command makes between its first `kill` without a signal and
/// its second, or its end where there is none. Asks strace.
///
/// @throws std::runtime_error when the command or strace fails, or no such mark is seen.
int countCallsBetweenMarks(const Command& command);

}  // namespace vestra_bench

#endif
