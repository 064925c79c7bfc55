#ifndef VESTRA_BENCH_REPORT_H
#define VESTRA_BENCH_REPORT_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "spread.h"

namespace vestra_bench {

/// One row of the table: a ratio, or a count that is compared as one.
struct Row {
  std::string what;
  /// The baseline.
  std::string beside;
  /// The limit of the median; a row without one is only informative.
  std::optional<double> goal;
  Spread figure;

  bool isMet() const { return !goal || figure.median <= *goal; }
};

/// The table for people. Each row is written as soon as it is known.
void writeHeading(std::ostream& out);
void writeRow(std::ostream& out, const Row& row);

/// The same for programs: an array of objects with the members "what", "beside",
/// "goal" (or null), "median", "lower_quartile", "upper_quartile", "rounds" and "met".
void writeJson(std::ostream& out, const std::vector<Row>& rows);

}  // namespace vestra_bench

#endif
