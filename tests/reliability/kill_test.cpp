// The host is killed at each system call of a report. docs/file-formats.md tabulates the
// states that its files can be in then, and what the next host makes of them.

#include <chrono>
#include <csignal>
#include <iostream>
#include <sstream>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

class KilledHost : public WatchedHost {
 protected:
  void killAt(std::size_t number) {
    workplace.reset();
    const HostEnd end = runHost(workplace.start(), {Disturbance::KILL, number});
    ASSERT_TRUE(end.disturbed);
    std::ostringstream what;
    what << "killed at call " << number << ", " << end.calls.back();
    SCOPED_TRACE(what.str());
    EXPECT_EQ(end.signal, SIGKILL);
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(contentOf(workplace.settingsFile()), settingsStates());
    EXPECT_THAT(contentOf(workplace.identityFile()), identityStates());
    EXPECT_THAT(contentOf(workplace.scriptFile()), scriptStates());
    EXPECT_THAT(contentOf(workplace.rulesFile()), rulesStates());
    if (isNewState()) {
      expectTheNextRunAsTabulated();
      expectThatAReportIsSent();
    }
  }

  Matcher<std::optional<std::string>> settingsStates() {
    if (GetParam().home == Situation::KNOWN_HOME) {
      return Optional(workplace.settingsBefore());
    }
    const auto whole = Optional(MatchesRegex(workplace.settingsBefore() + "RandomID=" + ANY_UUID + "\n"));
    if (GetParam().home == Situation::HOME_WITHOUT_IDENTIFIER) {
      return AnyOf(Optional(workplace.settingsBefore()), whole);
    }
    return AnyOf(std::nullopt, Optional(std::string()), whole);
  }

  Matcher<std::optional<std::string>> identityStates() {
    const bool isKnown = GetParam().project == Situation::KNOWN_PROJECT;
    const std::string next = isKnown ? "8" : "2";
    const std::string id = isKnown ? KNOWN_PROJECT_ID : ANY_UUID;
    const auto written = Optional(MatchesRegex(identityText(ANY_TIME, "0", next, "0", id)));
    if (isKnown) {
      return AnyOf(workplace.identityBefore(), written);
    }
    return AnyOf(std::nullopt, Optional(std::string()), written);
  }

  static Matcher<std::optional<std::string>> scriptStates() {
    return AnyOf(std::nullopt, Optional(EndsWith("of an earlier run\n")),
                 Optional(EndsWith("vestra_terminate\n")));
  }

  static Matcher<std::optional<std::string>> rulesStates() {
    return AnyOf(std::nullopt, Optional(EndsWith("of an earlier run\n")), Optional(SizeIs(1086)));
  }

  void makeTemporaryFilesStale() {
    for (const std::string& name : namesIn(workplace.inVestraDirectory(""))) {
      if (name.rfind(".vestra-", 0) == 0) {
        dateFile(workplace.inVestraDirectory(name), std::chrono::system_clock::now() - std::chrono::hours(2));
      }
    }
  }

  void expectTheNextRunAsTabulated() {
    const auto found = contentOf(workplace.identityFile());
    const std::vector<std::string> lines = linesIn(found.value_or(""));
    const bool wasSentToday = !lines.empty() && lines[0] != workplace.oldTime();
    const int iteration = lines.size() > 2 ? std::stoi(lines[2]) : 1;
    const std::string identifier = lines.size() > 4 ? lines[4] : found ? "" : ANY_UUID;
    makeTemporaryFilesStale();
    const HostEnd next = runHost(workplace.start());
    EXPECT_EQ(next.outcome, wasSentToday ? "answer false" : "answer true");
    EXPECT_EQ(next.output, "");
    EXPECT_THAT(namesIn(workplace.inVestraDirectory("")), Each(Not(StartsWith(".vestra-"))));
    EXPECT_THAT(contentOf(workplace.identityFile()).value_or("no file"),
                MatchesRegex(identityText(ANY_TIME, "0", std::to_string(iteration + 1), "0", identifier)));
  }
};

TEST_P(KilledHost, LeavesFilesThatTheNextReadsAsTabulated) {
  const std::vector<SystemCall> calls = callsOfARun();
  for (std::size_t number = 0; number < calls.size(); number += STEP) {
    killAt(number);
  }
  std::cout << GetParam() << ": killed at each of " << calls.size() << " system calls, which left "
            << stateCount() << " states of the files\n";
  EXPECT_GT(stateCount(), SANITIZED ? 5U : 10U);
}

INSTANTIATE_TEST_SUITE_P(EachSituation, KilledHost, ValuesIn(allSituations()), situationName);

/// A host that supplies the project's identifier.
class SuppliedIdentifier : public WatchedHost {
 protected:
  HostStart startWithIdentifier() const {
    HostStart start = workplace.start();
    start.projectId = "the-hosts";
    return start;
  }

  std::string identity() const { return contentOf(workplace.identityFile()).value_or("missing"); }
};

TEST_P(SuppliedIdentifier, LosesItsMarkByAnEmptyFileOnly) {
  workplace.reset();
  const std::size_t calls = runHost(startWithIdentifier(), {Disturbance::WATCH}).calls.size();
  int lost = 0;
  for (std::size_t number = 0; number < calls; number += STEP) {
    SCOPED_TRACE("killed at call " + std::to_string(number));
    workplace.reset();
    runHost(startWithIdentifier(), {Disturbance::KILL, number});
    const bool isEmpty = identity().empty();
    runHost(startWithIdentifier());
    EXPECT_THAT(identity(),
                MatchesRegex(identityText(ANY_TIME, "0", "[23]", isEmpty ? "0" : "1", "the-hosts")));
    lost += isEmpty ? 1 : 0;
  }
  std::cout << GetParam() << ": the mark is lost at " << lost << " of " << calls << " system calls\n";
  EXPECT_GT(calls, 50U);
}

INSTANTIATE_TEST_SUITE_P(NewProjects, SuppliedIdentifier,
                         Values(NEW_SIMULATOR,
                                Situation{Vestra::TAVLO, Situation::NEW_PROJECT, Situation::KNOWN_HOME}),
                         situationName);

}  // namespace
}  // namespace vestra_test
