// The host is killed at each system call of a report. docs/file-formats.md tabulates the
// states that its files can be in then, and what the next host makes of them.

#include <chrono>
#include <csignal>
#include <iostream>
#include <sstream>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using testing::AnyOf;
using testing::Matcher;
using testing::MatchesRegex;

constexpr const char* UUID = "[0-9a-f-]{36}";

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

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
      return testing::Optional(workplace.settingsBefore());
    }
    const auto whole =
        testing::Optional(MatchesRegex(workplace.settingsBefore() + "RandomID=" + UUID + "\n"));
    if (GetParam().home == Situation::HOME_WITHOUT_IDENTIFIER) {
      return AnyOf(testing::Optional(workplace.settingsBefore()), whole);
    }
    return AnyOf(std::nullopt, testing::Optional(std::string()), whole);
  }

  Matcher<std::optional<std::string>> identityStates() {
    const bool isKnown = GetParam().project == Situation::KNOWN_PROJECT;
    const std::string next = isKnown ? "8" : "2";
    const std::string id = isKnown ? KNOWN_PROJECT_ID : UUID;
    const auto written = testing::Optional(MatchesRegex("[0-9]{10}\n0\n" + next + "\n0\n" + id + "\n"));
    if (isKnown) {
      return AnyOf(workplace.identityBefore(), written);
    }
    return AnyOf(std::nullopt, testing::Optional(std::string()), written);
  }

  static Matcher<std::optional<std::string>> scriptStates() {
    return AnyOf(std::nullopt, testing::Optional(testing::EndsWith("of an earlier run\n")),
                 testing::Optional(testing::EndsWith("vestra_terminate\n")));
  }

  static Matcher<std::optional<std::string>> rulesStates() {
    return AnyOf(std::nullopt, testing::Optional(testing::EndsWith("of an earlier run\n")),
                 testing::Optional(testing::SizeIs(1086)));
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
    const std::vector<std::string> lines = linesOf(found.value_or(""));
    const bool wasSentToday = !lines.empty() && lines[0] != workplace.oldTime();
    const int iteration = lines.size() > 2 ? std::stoi(lines[2]) : 1;
    const std::string identifier = lines.size() > 4 ? lines[4] : found ? "" : UUID;
    makeTemporaryFilesStale();
    const HostEnd next = runHost(workplace.start());
    EXPECT_EQ(next.outcome, wasSentToday ? "answer false" : "answer true");
    EXPECT_EQ(next.output, "");
    EXPECT_THAT(namesIn(workplace.inVestraDirectory("")),
                testing::Each(testing::Not(testing::StartsWith(".vestra-"))));
    EXPECT_THAT(contentOf(workplace.identityFile()).value_or("no file"),
                MatchesRegex("[0-9]{10}\n0\n" + std::to_string(iteration + 1) + "\n0\n" + identifier + "\n"));
  }
};

TEST_P(KilledHost, FilesAfterEachKillAreReadAsTabulated) {
  const std::vector<SystemCall> calls = callsOfARun();
  for (std::size_t number = 0; number < calls.size(); number += SANITIZED ? 5 : 1) {
    killAt(number);
  }
  std::cout << GetParam() << ": killed at each of " << calls.size() << " system calls, which left "
            << stateCount() << " states of the files\n";
  EXPECT_GT(stateCount(), SANITIZED ? 5U : 10U);
}

INSTANTIATE_TEST_SUITE_P(EachSituation, KilledHost, testing::ValuesIn(allSituations()), situationName);

}  // namespace
}  // namespace vestra_test
