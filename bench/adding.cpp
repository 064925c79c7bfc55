#include <map>
#include <string>

#include "process.h"
#include "rows.h"

namespace vestra_bench {
namespace {

constexpr double GOAL = 1.25;

struct Size {
  const char* name;
  const char* key;
  const char* value;
};

constexpr Size SIZES[] = {{"long", "16", "24"}, {"short", "10", "8"}};

// Short runs are noisier.
const std::map<int, int> ROUNDS_OF_COUNT = {{100, 101}, {10000, 31}, {1000000, 31}};

std::string nameOf(const Size& size, int count) {
  return "add, " + std::to_string(count) + " items of " + size.key + " + " + size.value + " bytes";
}

Spread compare(const char* baseline, const char* first, const Size& size, int count) {
  const auto run = [&](const char* side) {
    return numbersOf({ADD_ITEMS, side, first, size.key, size.value, std::to_string(count)}).at(0);
  };
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS_OF_COUNT.at(count); ++round) {
    rounds.push_back({run("library"), run(baseline)});
  }
  return ratiosOf(rounds);
}

}  // namespace

void measureAdding(const Take& take) {
  for (const Size& size : SIZES) {
    for (const auto& [count, rounds] : ROUNDS_OF_COUNT) {
      take({nameOf(size, count), "vector of two strings and a number", GOAL,
            compare("vector", "with-first", size, count)});
    }
    take({nameOf(size, 100),
          "the same, and one file read",
          {},
          compare("vector-and-file", "with-first", size, 100)});
    take({nameOf(size, 100) + ", locale in use",
          "the same, and one file read",
          {},
          compare("vector-and-file", "with-first-and-locale", size, 100)});
    take({nameOf(size, 100) + ", after the first",
          "vector of two strings and a number",
          {},
          compare("vector", "after-first", size, 100)});
  }
}

}  // namespace vestra_bench
