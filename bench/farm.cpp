// Many hosts in one project, beside the same hosts with nothing shared:
//
//     vestra_farm ROUNDS DISK_DIRECTORY MEMORY_DIRECTORY
//
// Writes a Markdown table. Varied are the number of hosts, then, for 50 of them, the tool, the
// file system and the spread.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/farms/farm.h"

namespace {

using vestra_test::Age;
using vestra_test::Farm;
using vestra_test::Harvest;

constexpr std::pair<Age, const char*> AGES[] = {{Age::NOT_DUE, "not due"},
                                                {Age::DUE, "due"},
                                                {Age::NEW_PROJECT, "new"},
                                                {Age::NEW_HOME, "new, new home"}};

struct Condition {
  int hosts;
  int toolMilliseconds;
  int spreadSeconds;
  bool inMemory;
};

constexpr Condition CONDITIONS[] = {
    {2, 20, 0, false}, {10, 20, 0, false},  {50, 20, 0, false}, {500, 20, 0, false}, {50, 0, 0, false},
    {50, 20, 0, true}, {50, 200, 0, false}, {50, 20, 1, false}, {50, 20, 10, false},
};

constexpr std::pair<const char*, int Harvest::*> FAULTS[] = {
    {"wrong scripts", &Harvest::wrongScripts},
    {"wrong rules files", &Harvest::wrongRules},
    {"reports without identifier", &Harvest::withoutIdentifier},
    {"lost identifiers", &Harvest::lostIdentifiers},
    {"lost attempts", &Harvest::lostAttempts},
    {"files left over", &Harvest::filesLeftOver},
    {"exceptions", &Harvest::exceptions},
    {"hosts without an answer", &Harvest::silentHosts},
};

double perRound(const std::vector<Harvest>& rounds, int Harvest::*count) {
  double sum = 0;
  for (const Harvest& round : rounds) {
    sum += round.*count;
  }
  return sum / static_cast<double>(rounds.size());
}

std::string faultsIn(const std::vector<Harvest>& rounds) {
  std::ostringstream text;
  for (const auto& [name, count] : FAULTS) {
    if (const double found = perRound(rounds, count); found > 0) {
      text << (text.str().empty() ? "" : ", ") << found << " " << name;
    }
  }
  return text.str().empty() ? "none" : text.str();
}

double medianDuration(std::vector<Harvest> rounds) {
  const auto middle = rounds.begin() + static_cast<std::ptrdiff_t>(rounds.size() / 2);
  std::nth_element(rounds.begin(), middle, rounds.end(),
                   [](const Harvest& one, const Harvest& other) { return one.duration < other.duration; });
  return middle->duration.count();
}

/// Throws when even the hosts that share nothing go wrong: then the measurement is at fault.
void expectRight(const Farm& farm, const std::vector<Harvest>& alone) {
  const int due = farm.age == Age::NOT_DUE ? 0 : farm.hosts;
  if (perRound(alone, &Harvest::toolStarts) != due || faultsIn(alone) != "none") {
    throw std::runtime_error("hosts that share nothing do not report as they should: " + faultsIn(alone));
  }
}

void measure(Farm farm, int rounds) {
  std::vector<Harvest> shared;
  std::vector<Harvest> alone;
  for (int round = 0; round < rounds; ++round) {
    farm.isShared = true;
    shared.push_back(runFarm(farm));
    farm.isShared = false;
    alone.push_back(runFarm(farm));
  }
  expectRight(farm, alone);
  std::cout << perRound(shared, &Harvest::toolStarts) << " | " << perRound(alone, &Harvest::toolStarts)
            << " | " << faultsIn(shared) << " | " << perRound(shared, &Harvest::userIdentifiers) << " | "
            << medianDuration(shared) / medianDuration(alone) << " |" << std::endl;
}

/// Fewer rounds suffice where one takes long.
bool takesLong(const Condition& condition) { return condition.hosts > 200 || condition.spreadSeconds >= 10; }

void measureAll(int rounds, const std::string& disk, const std::string& memory) {
  std::cout << "| Hosts | Project | Tool, ms | File system | Spread, s | Tool starts, shared | separate | "
               "Faults in a round | Users' identifiers in a round | Time relative to separate |\n"
               "|---|---|---|---|---|---|---|---|---|---|\n"
            << std::fixed << std::setprecision(2);
  for (const Condition& condition : CONDITIONS) {
    for (const auto& [age, name] : AGES) {
      std::cout << "| " << condition.hosts << " | " << name << " | " << condition.toolMilliseconds << " | "
                << (condition.inMemory ? "tmpfs" : "disk") << " | " << condition.spreadSeconds << " | ";
      Farm farm;
      farm.hosts = condition.hosts;
      farm.age = age;
      farm.tool = std::chrono::milliseconds(condition.toolMilliseconds);
      farm.spread = std::chrono::seconds(condition.spreadSeconds);
      farm.directory = condition.inMemory ? memory : disk;
      measure(farm, takesLong(condition) ? std::max(1, rounds / 5) : rounds);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: vestra_farm ROUNDS DISK_DIRECTORY MEMORY_DIRECTORY\n";
    return EXIT_FAILURE;
  }
  try {
    measureAll(std::max(1, std::atoi(argv[1])), argv[2], argv[3]);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "vestra_farm: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
