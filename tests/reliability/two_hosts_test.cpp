// Two hosts in one project: while one of them is stopped before one of its system calls,
// the other one reports from beginning to end.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <fstream>
#include <iterator>

#include "reliability/system_calls.h"
#include "reliability/watched_host.h"
#include "support/process.h"

namespace vestra_test {
namespace {

class TwoHosts : public WatchedHost {
 protected:
  /// Its design tool notes the script's last line.
  HostStart start() const {
    HostStart start = workplace.start();
    start.designTool = "tail -n 1 " + workplace.scriptFile() + " >> " + toolStarts() + "; :";
    start.keepsReportFiles = true;
    return start;
  }

  std::vector<SystemCall> callsOfARun() {
    workplace.reset();
    return runHost(start(), {Disturbance::WATCH}).calls;
  }

  std::string sendFromAnotherHost() const {
    const HostStart other = start();
    return run({FARM_HOST, other.project, std::to_string(other.product), "2", "0"},
               {"HOME=" + other.home, "LD_LIBRARY_PATH=" SUPPORT_LIBRARY_DIRECTORY,
                "CALVIX_VESTRA_DEBUG_EXT=1", "VESTRA_TESTKIT_EXEC_PATH=" + other.designTool})
        .out;
  }

  /// Lets the first host go on once the other one has reported before one of its calls.
  void meetBefore(
      std::size_t call, const std::function<void()>& afterTheOthersReport = [] {}) {
    workplace.reset();
    std::string answer;
    const HostEnd end = runHost(start(), {Disturbance::MEDDLE, call, 0, [&] {
                                            answer = sendFromAnotherHost();
                                            afterTheOthersReport();
                                          }});
    EXPECT_THAT(answer, MatchesRegex("ready\n(true|false) [0-9]+\n"));
    EXPECT_THAT(end.outcome, MatchesRegex("answer (true|false)"));
  }

  std::string identity() const { return contentOf(workplace.identityFile()).value_or("no file"); }
  std::string toolStarts() const { return workplace.home() + "/tool_starts"; }
  std::string noteOfTheTool() const { return contentOf(toolStarts()).value_or(""); }
};

/// The calls about a file, as places in a list of calls.
std::vector<std::size_t> callsAbout(const std::vector<SystemCall>& calls, const std::string& file) {
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < calls.size(); ++place) {
    if (calls[place].subject == file) {
      places.push_back(place);
    }
  }
  return places;
}

bool isPause(const SystemCall& call) {
  return call.number == SYS_clock_nanosleep || call.number == SYS_nanosleep;
}

/// Where a host takes the lock under which it counts, and where it closes the file and so
/// ends the lock.
struct Locking {
  std::size_t begin = 0;
  std::size_t end = 0;

  Locking(const std::vector<SystemCall>& calls, const std::string& identityFile) {
    for (std::size_t place = 0; place < calls.size(); ++place) {
      if (calls[place].subject == identityFile) {
        begin = nameOf(calls[place].number) == "fcntl" ? place : begin;
        end = place;
      }
    }
  }
  bool isHeldBefore(std::size_t call) const { return call > begin && call <= end; }
};

TEST_P(TwoHosts, BothAreCountedAndOneToolStarts) {
  const std::vector<SystemCall> calls = callsOfARun();
  const bool isNew = GetParam().project == Situation::NEW_PROJECT;
  const std::string identifier = isNew ? "[0-9a-f-]{36}" : KNOWN_PROJECT_ID;
  const std::string one = "vestra_terminate\n";
  const Locking locking(calls, workplace.identityFile());
  const std::vector<std::size_t> places = callsAbout(calls, workplace.identityFile());
  for (const std::size_t place : places) {
    SCOPED_TRACE(nameOf(calls[place].number) + std::to_string(place));
    const bool isLocked = locking.isHeldBefore(place);
    meetBefore(place);
    const std::string count = isNew ? (isLocked ? "[23]" : "3") : (isLocked ? "[89]" : "9");
    EXPECT_THAT(identity(), MatchesRegex(identityText(ANY_TIME, "0", count, "0", identifier)));
    EXPECT_THAT(noteOfTheTool(), isLocked ? Matcher<std::string>(AnyOf(one, one + one)) : one);
  }
  EXPECT_GT(places.size(), 5U);
}

TEST_P(TwoHosts, NeitherWritesIntoTheOthersReport) {
  const std::vector<SystemCall> calls = callsOfARun();
  const std::size_t rules = callsAbout(calls, workplace.rulesFile()).front();
  const std::size_t script = callsAbout(calls, workplace.scriptFile()).back();
  for (std::size_t place = rules; place <= script; ++place) {
    if (calls[place].subject.find(workplace.inVestraDirectory("")) != 0) {
      continue;
    }
    SCOPED_TRACE(nameOf(calls[place].number) + std::to_string(place));
    std::ifstream reader;
    std::string report;
    meetBefore(place, [&] {
      reader.open(workplace.scriptFile(), std::ios::binary);
      report = readFile(workplace.scriptFile());
    });
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), report);
    EXPECT_GT(report.size(), 1000U);
  }
}

TEST_P(TwoHosts, TemporaryFileOfALiveHostStays) {
  const std::vector<SystemCall> calls = callsOfARun();
  int writes = 0;
  for (std::size_t place = 0; place < calls.size(); ++place) {
    if (calls[place].number != SYS_pwrite64 || calls[place].subject.find("/.vestra-") == std::string::npos) {
      continue;
    }
    SCOPED_TRACE(calls[place]);
    std::vector<std::string> names;
    meetBefore(place, [&] { names = namesIn(workplace.inVestraDirectory("")); });
    EXPECT_THAT(names, Contains(MatchesRegex("\\.vestra-.*\\.new")));
    ++writes;
  }
  EXPECT_EQ(writes, 2);
}

// The pauses are of 0.25, 0.5, 1, 2 and then 4 ms.
TEST_P(TwoHosts, LockHolderIsWaitedForUpToAQuarterOfASecondInAll) {
  constexpr int MOST_PAUSES = 4 + 62;
  workplace.reset();
  writeFile(workplace.identityFile(), workplace.identityBefore().value_or(""));
  const int holder = open(workplace.identityFile().c_str(), O_RDWR);
  struct flock wholeFile {};
  wholeFile.l_type = F_WRLCK;
  ASSERT_EQ(fcntl(holder, F_SETLK, &wholeFile), 0);
  const HostEnd end = runHost(start(), {Disturbance::WATCH});
  close(holder);
  EXPECT_EQ(end.outcome, "answer true");
  const auto pauses = std::count_if(end.calls.begin(), end.calls.end(), isPause);
  EXPECT_GE(pauses, 1);
  EXPECT_LE(pauses, MOST_PAUSES);
}

INSTANTIATE_TEST_SUITE_P(Projects, TwoHosts,
                         Values(Situation{Vestra::KELVO, Situation::NEW_PROJECT, Situation::KNOWN_HOME},
                                KNOWN_SIMULATOR, KNOWN_LAB_TOOL),
                         situationName);

/// The second host of a new project: the first one has made the identity file, and has yet
/// to write its record.
class SecondHost : public TwoHosts {
 protected:
  // Dated ahead, the file stays young for longer.
  HostEnd report(const Disturbance& disturbance) {
    workplace.reset();
    HostStart host = start();
    host.atBeginning = [this](pid_t) {
      writeFile(workplace.identityFile(), "");
      dateFile(workplace.identityFile(), std::chrono::system_clock::now() + std::chrono::milliseconds(240));
    };
    return runHost(host, disturbance);
  }

  /// Lets the first host write its record in the second one's first pause. Not all machines
  /// let a host come to it while the file is young.
  /// @return How the second one ended; nothing where it made no pause.
  std::optional<std::string> writeInThePause(const std::string& record) {
    const std::vector<SystemCall> calls = report({Disturbance::WATCH}).calls;
    const auto pause = std::find_if(calls.begin(), calls.end(), isPause);
    if (pause == calls.end()) {
      return std::nullopt;
    }
    const auto place = static_cast<std::size_t>(pause - calls.begin());
    const HostEnd end =
        report({Disturbance::MEDDLE, place, 0, [&] { writeFile(workplace.identityFile(), record); }});
    return isPause(end.calls.back()) ? std::optional(end.outcome) : std::nullopt;
  }
};

TEST_P(SecondHost, TakesTheFirstOnesIdentifierAndSendsNothing) {
  const std::string now = std::to_string(std::time(nullptr));
  std::optional<std::string> outcome;
  for (int round = 0; !outcome && round < 20; ++round) {
    outcome = writeInThePause(identityText(now, "0", "2", "0", KNOWN_PROJECT_ID));
  }
  EXPECT_EQ(outcome, "answer false");
  EXPECT_EQ(identity(), identityText(now, "0", "3", "0", KNOWN_PROJECT_ID));
  EXPECT_EQ(noteOfTheTool(), "");
}

INSTANTIATE_TEST_SUITE_P(NewProjects, SecondHost,
                         Values(Situation{Vestra::KELVO, Situation::NEW_PROJECT, Situation::KNOWN_HOME},
                                NEW_LAB_TOOL),
                         situationName);

}  // namespace
}  // namespace vestra_test
