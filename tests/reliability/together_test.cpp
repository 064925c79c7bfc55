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

  // Hosts take no lock: one may find an identity that another is writing, with bytes
  // missing or lines run together. It refuses it, as a lone one refuses a damaged file.
  void expectThatAllEndedWell(const std::vector<HostRun>& runs) {
    for (const HostRun& run : runs) {
      EXPECT_THAT(run, EndedQuietly()) << run;
      EXPECT_TRUE(run.answer.has_value()) << run;
    }
    EXPECT_TRUE(std::any_of(runs.begin(), runs.end(), [](const HostRun& run) { return run.answer == true; }));
  }

  void expectThatNoSettingsLineIsTorn() {
    std::istringstream lines(readFile(sandbox.settingsFile()));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_THAT(line, AnyOf("colour=blue", MatchesRegex("RandomID=[0-9a-f-]{36}")));
    }
  }

  // What the last writers left is read or, where it is no number any more, deleted, so
  // that the run after it starts anew.
  void expectThatTheNextRunsGoOn(Vestra::ProductType product) {
    const HostRun next = sandbox.run(product, [] {});
    EXPECT_THAT(next, EndedQuietly()) << next;
    if (next.identity.has_value()) {
      expectThatItWroteAll(next);
    }
    expectThatItWroteAll(sandbox.run(product, [] {}));
  }

  void expectThatItWroteAll(const HostRun& run) {
    EXPECT_THAT(run, EndedQuietly()) << run;
    EXPECT_TRUE(run.answer.has_value()) << run;
    EXPECT_THAT(run.script, testing::EndsWith("vestra_terminate\n"));
    ASSERT_TRUE(run.identity.has_value()) << run;
    EXPECT_EQ(std::count(run.identity->text.begin(), run.identity->text.end(), '\n'), 5) << run;
  }

  // Whatever the times that ran together say, a project whose identity is gone reports.
  void expectThatAFreshProjectReports(Vestra::ProductType product) {
    boost::filesystem::remove(sandbox.identityFile());
    const HostRun fresh = sandbox.run(product, [] {});
    expectThatItWroteAll(fresh);
    EXPECT_EQ(fresh.answer, true) << fresh;
  }

  vestra::testkit::Sandbox sandbox;
};

TEST_P(Together, SimulatorsDoNotFailEachOther) {
  expectThatAllEndedWell(runAll(Vestra::KELVO, Vestra::KELVO));
  expectThatNoSettingsLineIsTorn();
  expectThatTheNextRunsGoOn(Vestra::KELVO);
  expectThatAFreshProjectReports(Vestra::KELVO);
}

TEST_P(Together, LabToolsDoNotFailEachOther) {
  expectThatAllEndedWell(runAll(Vestra::TAVLO, Vestra::TAVLO));
  expectThatNoSettingsLineIsTorn();
  expectThatTheNextRunsGoOn(Vestra::TAVLO);
  expectThatAFreshProjectReports(Vestra::TAVLO);
}

TEST_P(Together, ProductsDoNotFailEachOther) {
  writeFile(sandbox.settingsFile(), "colour=blue\n");
  expectThatAllEndedWell(runAll(Vestra::KELVO_ALT, Vestra::TAVLO));
  expectThatNoSettingsLineIsTorn();
  expectThatTheNextRunsGoOn(Vestra::KELVO_ALT);
  expectThatTheNextRunsGoOn(Vestra::TAVLO);
  expectThatAFreshProjectReports(Vestra::TAVLO);
}

INSTANTIATE_TEST_SUITE_P(AgainAndAgain, Together, testing::Range(0, SANITIZED ? 1 : 3));

}  // namespace
}  // namespace vestra_test
