// Fifty hosts that start at one moment, with one project and one home.

#include <boost/filesystem.hpp>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include <algorithm>
#include <sstream>

#include "reliability/sanitized.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::AnyOf;
using testing::MatchesRegex;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HostRun;

constexpr int COUNT = SANITIZED ? 20 : 50;

class Together : public testing::TestWithParam<int> {
 protected:
  Together() {
    vestra::testkit::SupportAnswers answers;
    answers.execPath = ":";
    answers.registrationId = "REG-1";
    answers.environment = "a#1#b#2#c#3#d#4#e#5#f#6";
    sandbox.setSupportAnswers(answers);
  }

  std::vector<HostRun> runAll(Vestra::ProductType first, Vestra::ProductType second) {
    const std::string project = sandbox.project();
    return sandbox.runTogether(COUNT, [=](int number) {
      Vestra::add("runs", std::to_string(number).c_str(), Vestra::KELVO_USAGE);
      return Vestra::send(project.c_str(), number % 2 == 0 ? first : second);
    });
  }

  // A lone host may find a file that is being written: numbers cut short are numbers,
  // so none of them is deleted for good.
  void expectThatAllEndedWell(const std::vector<HostRun>& runs) {
    for (const HostRun& run : runs) {
      EXPECT_THAT(run, EndedQuietly()) << run;
      EXPECT_TRUE(run.answer) << run;
    }
    EXPECT_TRUE(std::any_of(runs.begin(), runs.end(), [](const HostRun& run) { return run.answer == true; }));
  }

  void expectThatNoSettingsLineIsTorn() {
    std::istringstream lines(readFile(sandbox.settingsFile()));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_THAT(line, AnyOf("colour=blue", MatchesRegex("RandomID=[0-9a-f-]{36}")));
    }
  }

  void expectThatTheNextRunReports(Vestra::ProductType product) {
    sandbox.ageUntilDue();
    EXPECT_EQ(expectThatTheNextRunReadsAll(product).answer, true);
  }

  HostRun expectThatTheNextRunReadsAll(Vestra::ProductType product) {
    const HostRun next = sandbox.run(product, [] {});
    EXPECT_THAT(next, EndedQuietly()) << next;
    EXPECT_THAT(next.script, testing::EndsWith("vestra_terminate\n"));
    EXPECT_THAT(next.identity->text, MatchesRegex("[0-9]+\n[0-9]+\n[0-9]+\n0\n.*\n"));
    return next;
  }

  vestra::testkit::Sandbox sandbox;
};

TEST_P(Together, OfTheSimulatorsNoneFails) {
  expectThatAllEndedWell(runAll(Vestra::KELVO, Vestra::KELVO));
  expectThatNoSettingsLineIsTorn();
  expectThatTheNextRunReports(Vestra::KELVO);
}

TEST_P(Together, OfTheLabToolsNoneFails) {
  expectThatAllEndedWell(runAll(Vestra::TAVLO, Vestra::TAVLO));
  expectThatNoSettingsLineIsTorn();
  expectThatTheNextRunReports(Vestra::TAVLO);
}

TEST_P(Together, OfBothProductsNoneFails) {
  writeFile(sandbox.settingsFile(), "colour=blue\n");
  expectThatAllEndedWell(runAll(Vestra::KELVO_ALT, Vestra::TAVLO));
  expectThatNoSettingsLineIsTorn();
  // Two that count for different slots at once may run their lines together, so that a
  // time lies far ahead: such a file is read, and what it says is kept to.
  expectThatTheNextRunReadsAll(Vestra::KELVO_ALT);
  expectThatTheNextRunReadsAll(Vestra::TAVLO);
}

INSTANTIATE_TEST_SUITE_P(AgainAndAgain, Together, testing::Range(0, SANITIZED ? 1 : 3));

}  // namespace
}  // namespace vestra_test
