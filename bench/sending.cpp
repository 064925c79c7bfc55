#include <string>

#include "process.h"
#include "rows.h"
#include "workplace.h"

namespace vestra_bench {
namespace {

constexpr int ROUNDS = 101;
constexpr int ROUNDS_OF_LARGE = 9;
constexpr std::size_t ITEMS = 100;
constexpr std::size_t LARGE[] = {10000, 100000, 1000000};

/// The measurements that one host prints.
struct Sending {
  double nanoseconds;
  double processorNanoseconds;
  double itemBytes;
  double largestBytes;
};

Sending send(const Workplace& place, Report report, std::size_t items) {
  place.restore(report);
  const std::vector<double> numbers = numbersOf({SEND_REPORT, std::to_string(items), place.project()});
  return {numbers.at(0), numbers.at(1), numbers.at(2), numbers.at(3)};
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

/// The processor time of a large report, without that of a report of a hundred items, relative
/// to a program that appends the same texts and writes one file.
Spread compareWithAppending(std::size_t items) {
  Workplace place;
  place.makeReport(items);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS_OF_LARGE; ++round) {
    const double whole = send(place, Report::NOT_DUE, items).processorNanoseconds;
    const double fixed = send(place, Report::NOT_DUE, ITEMS).processorNanoseconds;
    place.restore(Report::NOT_DUE);
    const double baseline = numbersOf({APPEND_ITEMS, std::to_string(items), place.scriptFile()}).at(0);
    rounds.push_back({whole - fixed, baseline});
  }
  return ratiosOf(rounds);
}

/// The process's peak memory relative to the script's text and the items.
Spread compareMemory(std::size_t items) {
  Workplace place;
  place.makeReport(items);
  std::vector<Pair> rounds;
  for (int round = 0; round < ROUNDS_OF_LARGE; ++round) {
    const Sending sending = send(place, Report::NOT_DUE, items);
    rounds.push_back({sending.largestBytes, static_cast<double>(place.scriptBytes()) + sending.itemBytes});
  }
  return ratiosOf(rounds);
}

}  // namespace

void measureSending(const Take& take) {
  take({"send that is not due, 100 items", "the same opens, reads, one write a file", 1.4,
        compareWithBaseline(Report::NOT_DUE)});
  take({"send that is due, 100 items", "the same, and system(\"true\")", 1.1,
        compareWithBaseline(Report::DUE)});
  for (const std::size_t items : LARGE) {
    take({"send of " + std::to_string(items) + " items, beyond that of 100",
          "both texts appended, zlib, one file", 1.3, compareWithAppending(items)});
  }
  for (const std::size_t items : LARGE) {
    take({"memory at its largest, " + std::to_string(items) + " items", "the script's text, and the items",
          1.15, compareMemory(items)});
  }
}

}  // namespace vestra_bench
