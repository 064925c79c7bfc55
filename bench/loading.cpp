#include <fstream>

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

}  // namespace

void measureLoading(const Take& take) {
  take({"starting a program with the library, 1000 times", "with an empty library", 1.15, compareStarts()});
  take({"size of the stripped library", "64 KB", 1, spreadOf({sizeWhenStripped() / LARGEST_FILE})});
}

}  // namespace vestra_bench
