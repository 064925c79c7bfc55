#include <algorithm>
#include <fstream>
#include <string>

#include "process.h"
#include "rows.h"
#include "support/temporary_directory.h"

namespace vestra_bench {
namespace {

constexpr int STARTS = 1000;
constexpr double LARGEST_FILE = 65536;

Spread compareStarts() {
  std::vector<Pair> rounds;
  for (int round = 0; round < STARTS; ++round) {
    rounds.push_back({lifetimeOf({START_WITH_LIBRARY}), lifetimeOf({START_WITH_EMPTY_LIBRARY})});
  }
  return ratiosOf(rounds);
}

double sizeWhenStripped() {
  const vestra_test::TemporaryDirectory directory;
  const std::string stripped = directory / "library";
  outputOf({STRIP, "-o", stripped, VESTRA_LIBRARY});
  std::ifstream in(stripped, std::ios::ate);
  return static_cast<double>(in.tellg());
}

/// The test that compares them writes two lines for each.
double symbolsThatDiffer() {
  const std::string differences = outputOf(
      {"sh", "-c", "\"$@\" || [ $? -eq 1 ]", "sh", CHECK_EXPORTED_SYMBOLS, VESTRA_LIBRARY, PROMISED_SYMBOLS});
  return static_cast<double>(std::count(differences.begin(), differences.end(), '\n')) / 2;
}

}  // namespace

void measureLoading(const Take& take) {
  take({"starting a program with the library, 1000 times", "with an empty library", 1.15, compareStarts()});
  take({"size of the stripped library", "64 KB", 1, spreadOf({sizeWhenStripped() / LARGEST_FILE})});
  take({"exported symbols more or fewer than promised", "the interface", 0, spreadOf({symbolsThatDiffer()})});
}

}  // namespace vestra_bench
