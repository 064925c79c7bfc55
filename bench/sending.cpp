#include <string>

#include "process.h"
#include "rows.h"
#include "workplace.h"

namespace vestra_bench {
namespace {

constexpr int ROUNDS = 101;
constexpr int ROUNDS_OF_LARGE = 9;
constexpr std::size_t ITEMS = 100;
constexpr std::size_t MANY = 10000;
constexpr std::size_t VERY_MANY = 1000000;

/// The measurements that one host prints.
struct Sending {
  double nanoseconds;
  double itemBytes;
  double largestBytes;
};

Sending send(const Workplace& place, Report report, std::size_t items) {
  place.restore(report);
  const std::vector<double> numbers = numbersOf({SEND_REPORT, std::to_string(items), place.project()});
  return {numbers.at(0), numbers.at(1), numbers.at(2)};
}

Command baselineCommand(const Workplace& place, Report report) {
  Command command{SEND_BASELINE, place.project()};
  if (report == Report::DUE) {
    command.emplace_back("true");
  }
  return command;
}

double sendBaseline(const Workplace& place, Report report) {
  place.restore(report);
  return numbersOf(baselineCommand(place, report)).at(0);
}

Spread compareWithBaseline(Report report) {
  Workplace place;
  place.makeReport(ITEMS);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS; ++round) {
    rounds.push_back({send(place, report, ITEMS).nanoseconds, sendBaseline(place, report)});
  }
  return ratiosOf(rounds);
}

/// The cost of one item among very many beside that among many.
Spread compareCostOfEachItem(Report report) {
  Workplace many;
  Workplace veryMany;
  many.makeReport(MANY);
  veryMany.makeReport(VERY_MANY);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS_OF_LARGE; ++round) {
    rounds.push_back({send(veryMany, report, VERY_MANY).nanoseconds / VERY_MANY,
                      send(many, report, MANY).nanoseconds / MANY});
  }
  return ratiosOf(rounds);
}

/// The process's peak memory beside twice the script's text and the items.
Spread compareMemory(std::size_t items) {
  Workplace place;
  place.makeReport(items);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS_OF_LARGE; ++round) {
    const Sending sending = send(place, Report::NOT_DUE, items);
    rounds.push_back(
        {sending.largestBytes, 2 * static_cast<double>(place.scriptBytes()) + sending.itemBytes});
  }
  return ratiosOf(rounds);
}

}  // namespace

void measureSending(const Take& take) {
  take({"send that is not due, 100 items", "the same opens, reads, one write a file", 1.4,
        compareWithBaseline(Report::NOT_DUE)});
  take({"send that is due, 100 items", "the same, and system(\"true\")", 1.1,
        compareWithBaseline(Report::DUE)});
  take({"send that is not due, each of 1000000 items", "each of 10000 items", 1.6,
        compareCostOfEachItem(Report::NOT_DUE)});
  take({"send that is due, each of 1000000 items", "each of 10000 items", 1.6,
        compareCostOfEachItem(Report::DUE)});
  take({"memory at its largest, 10000 items", "twice the text, and the items", 1, compareMemory(MANY)});
  take(
      {"memory at its largest, 1000000 items", "twice the text, and the items", 1, compareMemory(VERY_MANY)});
}

}  // namespace vestra_bench
