#ifndef VESTRA_BENCH_ROWS_H
#define VESTRA_BENCH_ROWS_H

#include <functional>

#include "report.h"

namespace vestra_bench {

/// Takes a row as soon as it is measured.
using Take = std::function<void(const Row&)>;

// Each measures one subject beside its baseline.

/// `Vestra::add` beside a vector, each in a process of its own.
void measureAdding(const Take& take);
/// A context's two renderings beside appending the same bytes.
void measureRendering(const Take& take);
/// The checksum beside a textbook's loop and zlib.
void measureChecksum(const Take& take);
/// `Vestra::send` beside a C program that does the same to the same files.
void measureSending(const Take& take);
/// Starting a program that is linked to the library, with either Boost, beside an empty
/// library without.
void measureLoading(const Take& take);

}  // namespace vestra_bench

#endif
