// Measures everything, writes one table, and the same as JSON into a file:
//
//     vestra_bench JSON_FILE [SUBJECT...]
//
// The subjects are adding, rendering, checksum, sending and loading; all of them unless
// some are named.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "rows.h"

namespace {

using vestra_bench::Row;

constexpr std::pair<const char*, void (*)(const vestra_bench::Take&)> SUBJECTS[] = {
    {"adding", vestra_bench::measureAdding},
    {"rendering", vestra_bench::measureRendering},
    {"checksum", vestra_bench::measureChecksum},
    {"sending", vestra_bench::measureSending},
    {"loading", vestra_bench::measureLoading}};

std::vector<Row> measure(const std::set<std::string>& wanted) {
  std::vector<Row> rows;
  vestra_bench::writeHeading(std::cout);
  for (const auto& [name, measureSubject] : SUBJECTS) {
    if (wanted.empty() || wanted.count(name) != 0) {
      measureSubject([&](const Row& row) {
        vestra_bench::writeRow(std::cout, row);
        rows.push_back(row);
      });
    }
  }
  return rows;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: vestra_bench JSON_FILE [SUBJECT...]\n";
    return EXIT_FAILURE;
  }
  // Google Benchmark would take the files and subjects for its own options.
  int ownArguments = 1;
  benchmark::Initialize(&ownArguments, argv);
  try {
    const std::vector<Row> rows = measure({argv + 2, argv + argc});
    std::ofstream json(argv[1]);
    vestra_bench::writeJson(json, rows);
    return json.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::cerr << "vestra_bench: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
