// Many hosts in one project, beside the same hosts with nothing shared:
//
//     vestra_farm ROUNDS DISK_DIRECTORY MEMORY_DIRECTORY [full]
//
// Writes a Markdown table. Without `full`, one condition is varied at a time: the number of
// hosts, then, for 50 of them, the tool, the file system and the spread. `full` crosses all.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "spread.h"
#include "support/farms/farm.h"

namespace {

using std::chrono::milliseconds;
using vestra_test::Age;
using vestra_test::Farm;
using vestra_test::Harvest;

constexpr int HOSTS[] = {2, 10, 50, 200, 500};
constexpr Age AGES[] = {Age::YOUNG, Age::OLD, Age::FRESH, Age::FRESH_HOME};
constexpr milliseconds TOOLS[] = {milliseconds(0), milliseconds(20), milliseconds(200)};
constexpr milliseconds SPREADS[] = {milliseconds(0), milliseconds(1000), milliseconds(10000)};

const char* nameOf(Age age) {
  switch (age) {
    case Age::YOUNG:
      return "young";
    case Age::OLD:
      return "old";
    case Age::FRESH:
      return "fresh";
    case Age::FRESH_HOME:
      break;
  }
  return "fresh, new home";
}

struct Place {
  const char* fileSystem;
  std::string directory;
};

/// The sums of several rounds.
struct Sums {
  int rounds = 0;
  Harvest all;
  int roundsWithoutIdentifier = 0;
  std::vector<double> durations;

  void add(const Harvest& round) {
    ++rounds;
    all.toolStarts += round.toolStarts;
    all.wrongScripts += round.wrongScripts;
    all.wrongRules += round.wrongRules;
    all.withoutIdentifier += round.withoutIdentifier;
    all.lostAttempts += round.lostAttempts;
    all.filesLeftOver += round.filesLeftOver;
    all.exceptions += round.exceptions + round.silentHosts;
    all.userIdentifiers += round.userIdentifiers;
    roundsWithoutIdentifier += round.lostIdentifiers > 0 ? 1 : 0;
    durations.push_back(round.duration.count());
  }
};

void writeHeading() {
  std::cout
      << "| Hosts | Project | Tool, ms | File system | Spread, s | Tool starts in a round: shared, alone | "
         "Wrong scripts | Wrong rules | Reports without identifier | Rounds that lost the identifier | "
         "Attempts lost, % | Users' identifiers in a round | Files left over | Exceptions | Time beside "
         "alone |\n"
         "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n";
}

void writeRow(const Farm& farm, const char* fileSystem, const Sums& shared, const Sums& alone) {
  const double attempts = static_cast<double>(shared.rounds) * farm.hosts;
  std::cout << std::fixed << std::setprecision(2) << "| " << farm.hosts << " | " << nameOf(farm.age) << " | "
            << farm.tool.count() << " | " << fileSystem << " | " << farm.spread.count() / 1000 << " | "
            << shared.all.toolStarts / static_cast<double>(shared.rounds) << ", "
            << alone.all.toolStarts / static_cast<double>(alone.rounds) << " | " << shared.all.wrongScripts
            << " of " << shared.all.toolStarts << " | " << shared.all.wrongRules << " of "
            << shared.all.toolStarts << " | " << shared.all.withoutIdentifier << " | "
            << shared.roundsWithoutIdentifier << " of " << shared.rounds << " | "
            << 100 * shared.all.lostAttempts / attempts << " | "
            << shared.all.userIdentifiers / static_cast<double>(shared.rounds) << " | "
            << shared.all.filesLeftOver << " | " << shared.all.exceptions << " | "
            << vestra_bench::spreadOf(shared.durations).median /
                   vestra_bench::spreadOf(alone.durations).median
            << " |" << std::endl;
}

/// Throws when even the hosts that share nothing go wrong: then the measurement is at fault.
void expectRight(const Farm& farm, const Sums& alone) {
  const int due = farm.age == Age::YOUNG ? 0 : farm.hosts * alone.rounds;
  if (alone.all.toolStarts != due ||
      alone.all.wrongScripts + alone.all.wrongRules + alone.all.exceptions != 0 ||
      alone.roundsWithoutIdentifier != 0 || alone.all.lostAttempts != 0) {
    throw std::runtime_error("hosts that share nothing do not report as they should");
  }
}

void measure(Farm farm, const Place& place, int rounds) {
  farm.directory = place.directory;
  Sums shared;
  Sums alone;
  for (int round = 0; round < rounds; ++round) {
    farm.isShared = true;
    shared.add(runFarm(farm));
    farm.isShared = false;
    alone.add(runFarm(farm));
  }
  expectRight(farm, alone);
  writeRow(farm, place.fileSystem, shared, alone);
}

using Measure = std::function<void(int, milliseconds, milliseconds, const Place&)>;

void varyOneAtATime(const Place& disk, const Place& memory, const Measure& measureAges) {
  for (const int hosts : HOSTS) {
    measureAges(hosts, TOOLS[1], SPREADS[0], disk);
  }
  measureAges(50, TOOLS[0], SPREADS[0], disk);
  measureAges(50, TOOLS[2], SPREADS[0], disk);
  measureAges(50, TOOLS[1], SPREADS[0], memory);
  measureAges(50, TOOLS[1], SPREADS[1], disk);
  measureAges(50, TOOLS[1], SPREADS[2], disk);
}

void crossAll(const Place& disk, const Place& memory, const Measure& measureAges) {
  for (const int hosts : HOSTS) {
    for (const milliseconds tool : TOOLS) {
      for (const milliseconds spread : SPREADS) {
        measureAges(hosts, tool, spread, disk);
        measureAges(hosts, tool, spread, memory);
      }
    }
  }
}

/// Fewer rounds suffice where one takes long.
bool takesLong(const Farm& farm) { return farm.hosts > 200 || farm.spread >= SPREADS[2]; }

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: vestra_farm ROUNDS DISK_DIRECTORY MEMORY_DIRECTORY [full]\n";
    return EXIT_FAILURE;
  }
  const int rounds = std::max(1, std::atoi(argv[1]));
  const auto measureAges = [&](int hosts, milliseconds tool, milliseconds spread, const Place& place) {
    for (const Age age : AGES) {
      Farm farm;
      farm.hosts = hosts;
      farm.age = age;
      farm.tool = tool;
      farm.spread = spread;
      measure(farm, place, takesLong(farm) ? std::max(1, rounds / 5) : rounds);
    }
  };
  try {
    writeHeading();
    (argc > 4 ? crossAll : varyOneAtATime)({"disk", argv[2]}, {"tmpfs", argv[3]}, measureAges);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "vestra_farm: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
