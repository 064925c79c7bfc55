// Many hosts at once in one project: it keeps its identity, the day counts once, and the
// design tool reads whole files. VESTRA_FARM_HOSTS says how many hosts there are.

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "reliability/sanitized.h"
#include "reliability/system_calls.h"
#include "reliability/watched_host.h"
#include "support/farms/farm.h"
#include "support/farms/report_check.h"
#include "support/files.h"
#include "support/process.h"
#include "support/scenario/scenario.h"
#include "support/temporary_directory.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::MatchesRegex;

int hostsOfAFarm() {
  const char* number = std::getenv("VESTRA_FARM_HOSTS");
  return number != nullptr ? std::atoi(number) : SANITIZED ? 20 : 50;
}

struct Products {
  const char* name;
  std::vector<Vestra::ProductType> all;
};

std::ostream& operator<<(std::ostream& out, const Products& products) { return out << products.name; }

std::string productsName(const testing::TestParamInfo<Products>& info) { return info.param.name; }

class HostsAtOnce : public testing::TestWithParam<Products> {
 protected:
  static Harvest reap(Age age) {
    const TemporaryDirectory directory;
    Farm farm;
    farm.hosts = hostsOfAFarm();
    farm.age = age;
    farm.products = GetParam().all;
    farm.directory = directory.path();
    return runFarm(farm);
  }

  // A host that waits in vain for its turn to count goes on without it, so a machine that
  // is very busy may lose some attempts.
  static void expectThatNothingIsLost(const Harvest& harvest) {
    EXPECT_EQ(harvest.lostIdentifiers, 0);
    EXPECT_EQ(harvest.withoutIdentifier, 0);
    EXPECT_LE(harvest.lostAttempts, hostsOfAFarm() / 10);
    EXPECT_EQ(harvest.filesLeftOver, 0);
    EXPECT_EQ(harvest.exceptions, 0);
    EXPECT_EQ(harvest.silentHosts, 0);
  }
};

TEST_P(HostsAtOnce, YoungProjectStartsNoTool) {
  const Harvest harvest = reap(Age::YOUNG);
  EXPECT_EQ(harvest.toolStarts, 0);
  expectThatNothingIsLost(harvest);
}

TEST_P(HostsAtOnce, OldProjectStartsOneToolOnAWholeReport) {
  const Harvest harvest = reap(Age::OLD);
  EXPECT_EQ(harvest.toolStarts, 1);
  EXPECT_EQ(harvest.wrongScripts, 0);
  EXPECT_EQ(harvest.wrongRules, 0);
  expectThatNothingIsLost(harvest);
}

// Where the machine holds the host that makes a project new up for longer than the others
// wait, they go on without its identifier. It does not do so three times in a row.
TEST_P(HostsAtOnce, FreshProjectKeepsOneIdentifier) {
  Harvest harvest = reap(Age::FRESH);
  for (int again = 0; again < 2 && (harvest.identifiers != 1 || harvest.withoutIdentifier != 0); ++again) {
    harvest = reap(Age::FRESH);
  }
  EXPECT_GE(harvest.toolStarts, 1);
  EXPECT_LE(harvest.toolStarts, 3);
  EXPECT_EQ(harvest.identifiers, 1);
  expectThatNothingIsLost(harvest);
}

INSTANTIATE_TEST_SUITE_P(Products, HostsAtOnce,
                         testing::Values(Products{"Simulators", {Vestra::KELVO}},
                                         Products{"LabTools", {Vestra::TAVLO}},
                                         Products{"Both", {Vestra::KELVO, Vestra::TAVLO}}),
                         productsName);

/// A host that counts its attempt, and another that comes at that very moment.
class CountingHost : public WatchedHost {
 protected:
  std::string sendFromAnotherHost() {
    const HostStart start = workplace.start();
    return run({FARM_HOST, start.project, std::to_string(start.product), "2", "0"}, environmentOf(start)).out;
  }

  std::vector<std::string> environmentOf(const HostStart& start) const {
    return {"HOME=" + start.home, "LD_LIBRARY_PATH=" SUPPORT_LIBRARY_DIRECTORY,
            "VESTRA_TESTKIT_EXEC_PATH=" + start.designTool};
  }
};

TEST_P(CountingHost, AnotherHostDoesNotWaitForAStoppedOne) {
  const std::vector<SystemCall> calls = callsOfARun();
  int moments = 0;
  for (std::size_t number = 0; number < calls.size(); ++number) {
    if (calls[number].subject != workplace.identityFile()) {
      continue;
    }
    SCOPED_TRACE(nameOf(calls[number].number) + std::to_string(number));
    workplace.reset();
    std::string others;
    const HostEnd end =
        runHost(workplace.start(), {Disturbance::MEDDLE, number, 0, [&] { others = sendFromAnotherHost(); }});
    EXPECT_THAT(others, MatchesRegex("ready\n(true|false)\n"));
    EXPECT_THAT(end.outcome, MatchesRegex("answer (true|false)"));
    EXPECT_THAT(contentOf(workplace.identityFile()).value_or("no file"),
                MatchesRegex("[0-9]{10}\n0\n[89]\n0\n" + std::string(KNOWN_PROJECT_ID) + "\n"));
    ++moments;
  }
  EXPECT_GT(moments, 5);
}

INSTANTIATE_TEST_SUITE_P(
    KnownProjects, CountingHost,
    testing::Values(Situation{Vestra::KELVO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME},
                    Situation{Vestra::TAVLO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME}),
    situationName);

class NestedHost : public Scenario {};

TEST_F(NestedHost, ToolMayStartAHostOfTheSameProject) {
  writeIdentity("1000\n0\n7\n0\nproject-7\n");
  const std::string answer = sandbox.directory() + "/answer";
  useRecordingTool("LD_LIBRARY_PATH=" SUPPORT_LIBRARY_DIRECTORY " " FARM_HOST " " + sandbox.project() +
                   " 0 2 0 < /dev/null > " + answer);
  const vestra::testkit::HostRun outer = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(outer.answer, true) << outer;
  EXPECT_EQ(readFile(answer), "ready\nfalse\n");
  EXPECT_THAT(outer.identity->text, MatchesRegex("[0-9]{10}\n0\n9\n0\nproject-7\n"));
}

/// What the farm's own design tool makes of a script.
class ReportCheck : public Scenario {
 protected:
  std::string scriptOf(const char* host) {
    writeIdentity("9999999999\n0\n7\n0\nproject-7\n");
    return sandbox
        .run(Vestra::KELVO,
             [=] {
               for (int i = 0; i < MARKS_OF_A_HOST; ++i) {
                 Vestra::add(MARK, host, Vestra::KELVO_USAGE);
               }
             })
        .script;
  }

  static std::string fault(const std::string& script) { return faultOf(script, std::time(nullptr)); }
};

TEST_F(ReportCheck, WholeScriptIsRight) { EXPECT_EQ(fault(scriptOf("1")), ""); }

TEST_F(ReportCheck, AnyPrefixIsTorn) {
  const std::string script = scriptOf("1");
  for (std::size_t length = 1; length < script.size(); ++length) {
    ASSERT_EQ(fault(script.substr(0, length)), "torn") << length;
  }
  EXPECT_EQ(fault(""), "empty");
}

TEST_F(ReportCheck, ItemsOfTwoHostsAreMixed) {
  std::string script = scriptOf("1");
  script.replace(script.rfind("-key host -value \"1\""), 20, "-key host -value \"2\"");
  EXPECT_EQ(fault(script), "mixed");
}

TEST_F(ReportCheck, ChangedFactHasAnotherChecksum) {
  std::string script = scriptOf("1");
  script.replace(script.find("project-7"), 9, "project-8");
  EXPECT_EQ(fault(script), "checksum");
}

}  // namespace
}  // namespace vestra_test
