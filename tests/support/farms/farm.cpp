#include "support/farms/farm.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <set>
#include <sstream>
#include <system_error>

#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/identity_text.h"
#include "support/process.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

constexpr const char* IDENTIFIER = "7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d";
constexpr int ITERATION_BEFORE = 7;
constexpr std::time_t HOUR = 3600;

/// A pipe, whose ends are closed by `exec`.
class Pipe {
 public:
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe2");
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    closeReading();
    closeWriting();
  }

  int reading() const { return ends[0]; }
  int writing() const { return ends[1]; }
  void closeReading() { closeEnd(0); }
  void closeWriting() { closeEnd(1); }

  /// The next line; empty at the end.
  std::string line() {
    std::string text;
    for (char byte = 0; byte != '\n' && read(reading(), &byte, 1) == 1;) {
      text += byte;
    }
    return text;
  }

 private:
  void closeEnd(std::size_t which) {
    if (ends.at(which) != -1) {
      close(ends.at(which));
      ends.at(which) = -1;
    }
  }

  std::array<int, 2> ends{};
};

/// The directories of a round, removed at its end.
class Ground {
 public:
  explicit Ground(const Farm& farm)
      : directory((fs::path(farm.directory) / fs::unique_path("vestra-farm-%%%%%%%%")).string()) {
    fs::create_directories(directory);
  }
  Ground(const Ground&) = delete;
  Ground& operator=(const Ground&) = delete;
  ~Ground() {
    boost::system::error_code ignored;
    fs::remove_all(directory, ignored);
  }

  std::string home(int number) const { return directory + "/home-" + std::to_string(number); }
  std::string project(int number) const { return directory + "/project-" + std::to_string(number); }
  std::string record() const { return directory + "/record"; }
  std::string rules(Oza::Vestra::ProductType product) const {
    return directory + (product == Oza::Vestra::TAVLO ? "/tavlo" : "/kelvo") + "-rules";
  }

 private:
  std::string directory;
};

std::string identityBefore(Age age) {
  const std::time_t last = age == Age::NOT_DUE ? std::time(nullptr) - HOUR : 1000;
  return identityText(std::to_string(last), "0", std::to_string(ITERATION_BEFORE), "0", IDENTIFIER);
}

bool isNew(const Farm& farm) { return farm.age == Age::NEW_PROJECT || farm.age == Age::NEW_HOME; }

std::string settingsIn(const std::string& home) { return home + "/.Calvix/Common/2018.2/vestra"; }

std::string identityIn(const std::string& project) { return project + "/vestra/.kelvo_vestrra.info"; }

void furnish(const Ground& ground, const Farm& farm, int number) {
  fs::create_directories(ground.home(number));
  if (farm.age != Age::NEW_HOME) {
    writeFile(settingsIn(ground.home(number)), "RandomID=0d7bb6a4-9d36-4b0e-8a44-3b8e7a8c4f52\n");
  }
  fs::create_directories(ground.project(number));
  if (!isNew(farm)) {
    writeFile(identityIn(ground.project(number)), identityBefore(farm.age));
  }
}

std::vector<std::string> variables(const Ground& ground, const Farm& farm, int place,
                                   Oza::Vestra::ProductType product) {
  return {"HOME=" + ground.home(place),
          std::string("LD_LIBRARY_PATH=") + SUPPORT_LIBRARY_DIRECTORY,
          std::string("VESTRA_TESTKIT_EXEC_PATH=") + FARM_TOOL,
          "VESTRA_TESTKIT_REGID=REG-1",
          "VESTRA_TESTKIT_ENVIRONMENT=a#1#b#2#c#3#d#4#e#5#f#6#date_generated#2026-11-21",
          "FARM_TOOL_MILLISECONDS=" + std::to_string(farm.tool.count()),
          "FARM_TOOL_RULES=" + ground.rules(product),
          "FARM_TOOL_RECORD=" + ground.record()};
}

Command commandOf(const std::string& project, Oza::Vestra::ProductType product, int number,
                  std::chrono::milliseconds delay) {
  return {FARM_HOST, project, std::to_string(product), std::to_string(number), std::to_string(delay.count())};
}

/// The right rules are those of a lone host. What stands first in an environment counts: its
/// home is not the farm's.
void keepRightRules(const Ground& ground, const Farm& farm, Oza::Vestra::ProductType product) {
  const std::string project = ground.rules(product) + "-project";
  std::vector<std::string> all{"CALVIX_VESTRA_DEBUG_EXT=1", "VESTRA_TESTKIT_EXEC_PATH=true",
                               "HOME=" + project + "-home"};
  const std::vector<std::string> usual = variables(ground, farm, 0, product);
  all.insert(all.end(), usual.begin(), usual.end());
  run(commandOf(project, product, 0, {}), all);
  const std::string name = product == Oza::Vestra::TAVLO ? "tavlo" : "kelvo";
  writeFile(ground.rules(product), readFile(project + "/vestra/usage_statistics_ext_" + name + ".wdm"));
}

std::vector<std::string> linesOf(const std::string& path) {
  return linesIn(exists(path) ? readFile(path) : "");
}

/// The different identifiers that a round has met.
struct Identifiers {
  std::set<std::string> ofProjects;
  std::set<std::string> ofUsers;
};

void countTools(const Ground& ground, Identifiers& identifiers, Harvest& harvest) {
  for (const std::string& line : linesOf(ground.record())) {
    std::istringstream words(line);
    std::string script;
    std::string rules;
    std::string identifier;
    std::string user;
    words >> script >> rules >> identifier >> user;
    identifiers.ofUsers.insert(user);
    ++harvest.toolStarts;
    harvest.wrongScripts += script == "right" ? 0 : 1;
    harvest.wrongRules += rules == "right" ? 0 : 1;
    if (identifier == "none") {
      harvest.withoutIdentifier += script == "right" ? 1 : 0;
    } else {
      identifiers.ofProjects.insert(identifier);
    }
  }
}

long iterationIn(const std::vector<std::string>& identity) {
  return identity.size() < 3 ? 0 : std::strtol(identity[2].c_str(), nullptr, 10);
}

bool isDocumented(const std::string& name) {
  static const std::set<std::string> documented{".kelvo_vestrra.info",
                                                "kelvo_vestra.tcl",
                                                "tavlo_vestra.tcl",
                                                "usage_statistics_ext_kelvo.wdm",
                                                "usage_statistics_ext_tavlo.wdm",
                                                "tavlo_vestra.log"};
  return documented.count(name) != 0;
}

void countSettings(const std::string& home, Identifiers& identifiers) {
  const std::string key = "RandomID=";
  for (const std::string& line : linesOf(settingsIn(home))) {
    identifiers.ofUsers.insert(line.compare(0, key.size(), key) == 0 ? line.substr(key.size()) : line);
  }
}

void countFiles(const std::string& project, const Farm& farm, Identifiers& identifiers, Harvest& harvest) {
  const std::vector<std::string> identity = linesOf(identityIn(project));
  const std::string identifier = identity.size() > 4 ? identity[4] : "";
  const int attempts = farm.isShared ? farm.hosts : 1;
  const long counted = iterationIn(identity) - (isNew(farm) ? 1 : ITERATION_BEFORE);
  harvest.lostIdentifiers += (isNew(farm) ? identifier.empty() : identifier != IDENTIFIER) ? 1 : 0;
  harvest.lostAttempts += attempts - static_cast<int>(std::max(0L, std::min<long>(attempts, counted)));
  identifiers.ofProjects.insert(identifier);
  for (const std::string& name : namesIn(project + "/vestra")) {
    harvest.filesLeftOver += isDocumented(name) ? 0 : 1;
  }
}

/// Hosts that wait for their release.
class Hosts {
 public:
  Hosts(const Ground& ground, const Farm& farm) {
    for (int number = 0; number < farm.hosts; ++number) {
      const int place = farm.isShared ? 0 : number;
      const auto product = farm.products.at(static_cast<std::size_t>(number) % farm.products.size());
      const auto delay = farm.spread * number / farm.hosts;
      processes.push_back(start(commandOf(ground.project(place), product, number, delay),
                                {gate.reading(), answers.writing(), STDERR_FILENO},
                                variables(ground, farm, place, product)));
    }
    answers.closeWriting();
    for (int number = 0; number < farm.hosts; ++number) {
      if (answers.line() != "ready\n") {
        throw std::runtime_error("a host was not ready");
      }
    }
  }

  void release(Harvest& harvest) {
    const auto begin = std::chrono::steady_clock::now();
    gate.closeWriting();
    harvest.silentHosts = static_cast<int>(processes.size());
    for (std::string line = answers.line(); !line.empty(); line = answers.line()) {
      std::istringstream words(line);
      std::string answer;
      std::int64_t time = 0;
      words >> answer >> time;
      harvest.silentHosts -= words ? 1 : 0;
      harvest.exceptions += answer == "exception" ? 1 : 0;
      harvest.longestReport = std::max(harvest.longestReport, std::chrono::milliseconds(time));
    }
    for (const pid_t process : processes) {
      waitFor(process);
    }
    harvest.duration = std::chrono::steady_clock::now() - begin;
  }

 private:
  Pipe gate;
  Pipe answers;
  std::vector<pid_t> processes;
};

}  // namespace

Harvest runFarm(const Farm& farm) {
  const Ground ground(farm);
  const int places = farm.isShared ? 1 : farm.hosts;
  for (int place = 0; place < places; ++place) {
    furnish(ground, farm, place);
  }
  for (const auto product : farm.products) {
    keepRightRules(ground, farm, product);
  }
  Harvest harvest;
  Hosts(ground, farm).release(harvest);
  Identifiers identifiers;
  countTools(ground, identifiers, harvest);
  for (int place = 0; place < places; ++place) {
    countFiles(ground.project(place), farm, identifiers, harvest);
    countSettings(ground.home(place), identifiers);
  }
  harvest.identifiers = static_cast<int>(identifiers.ofProjects.size());
  harvest.userIdentifiers = static_cast<int>(identifiers.ofUsers.size());
  return harvest;
}

}  // namespace vestra_test
