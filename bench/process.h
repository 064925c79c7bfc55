#ifndef VESTRA_BENCH_PROCESS_H
#define VESTRA_BENCH_PROCESS_H

#include <string>
#include <vector>

#include "support/process.h"

namespace vestra_bench {

using vestra_test::Command;

/// Runs a command to its end and gives what it wrote on its standard output.
///
/// @throws std::runtime_error when it cannot be started, or ends with another status than 0.
std::string outputOf(const Command& command);

/// The same for a program that writes numbers, with white space between.
std::vector<double> numbersOf(const Command& command);

/// The nanoseconds from a command's start to its end, as its parent measures them.
///
/// @throws std::runtime_error as `outputOf` does.
double lifetimeOf(const Command& command);

}  // namespace vestra_bench

#endif
