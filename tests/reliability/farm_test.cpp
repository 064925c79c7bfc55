// Many hosts at once in one project: it keeps its identity, the day counts once, and the
// design tool reads whole files. VESTRA_FARM_HOSTS says how many hosts there are.

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "support/farms/farm.h"
#include "support/report_check.h"
#include "support/scenario/scenario.h"
#include "support/temporary_directory.h"

namespace vestra_test {
namespace {

int hostsOfAFarm() {
  const char* number = std::getenv("VESTRA_FARM_HOSTS");
  return number != nullptr ? std::atoi(number) : 20;
}

struct Products {
  const char* name;
  std::vector<Vestra::ProductType> all;
};

std::ostream& operator<<(std::ostream& out, const Products& products) { return out << products.name; }

std::string productsName(const TestParamInfo<Products>& info) { return info.param.name; }

class HostsAtOnce : public TestWithParam<Products> {
 protected:
  /// A round in which no host had to wait for others in vain. A busy machine may hold hosts
  /// up for so long, fewer of them less so.
  Harvest reap(Age age) {
    const TemporaryDirectory directory;
    Farm farm;
    farm.hosts = hostsOfAFarm();
    farm.age = age;
    farm.products = GetParam().all;
    farm.directory = directory.path();
    for (int rounds = 0; rounds < 20; ++rounds) {
      const Harvest harvest = runFarm(farm);
      if (harvest.longestReport < SHORTEST_WAIT_IN_VAIN) {
        return harvest;
      }
      farm.hosts = std::max(2, farm.hosts / 2);
    }
    ADD_FAILURE() << "in each round a host was held up";
    return {};
  }

 private:
  static constexpr std::chrono::milliseconds SHORTEST_WAIT_IN_VAIN{200};
};

TEST_P(HostsAtOnce, ReportOnceADayWithoutLoss) {
  const struct {
    const char* name;
    Age age;
    int toolStarts;
  } rows[] = {{"not due", Age::NOT_DUE, 0},
              {"due", Age::DUE, 1},
              {"a new project", Age::NEW_PROJECT, 1},
              {"a new home", Age::NEW_HOME, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Harvest harvest = reap(row.age);
    EXPECT_EQ(harvest.toolStarts, row.toolStarts);
    EXPECT_EQ(harvest.wrongScripts, 0);
    EXPECT_EQ(harvest.identifiers, 1);
    EXPECT_EQ(harvest.userIdentifiers, 1);
    EXPECT_EQ(harvest.lostIdentifiers, 0);
    EXPECT_EQ(harvest.withoutIdentifier, 0);
    EXPECT_EQ(harvest.lostAttempts, 0);
    EXPECT_EQ(harvest.filesLeftOver, 0);
    EXPECT_EQ(harvest.exceptions, 0);
    EXPECT_EQ(harvest.silentHosts, 0);
    if (row.age == Age::DUE) {
      EXPECT_EQ(harvest.wrongRules, 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Products, HostsAtOnce,
                         Values(Products{"Simulators", {Vestra::KELVO}},
                                Products{"LabTools", {Vestra::TAVLO}},
                                Products{"Both", {Vestra::KELVO, Vestra::TAVLO}}),
                         productsName);

class NestedHost : public Scenario {};

TEST_F(NestedHost, MayBeStartedByTheDesignTool) {
  writeIdentity(identityText("1000", "0", "7", "0", "project-7"));
  const std::string answer = sandbox.directory() + "/answer";
  useTool("LD_LIBRARY_PATH=" SUPPORT_LIBRARY_DIRECTORY " " FARM_HOST " " + sandbox.project() +
          " 0 2 0 < /dev/null > " + answer);
  const HostRun outer = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(outer.answer, true) << outer;
  EXPECT_THAT(readFile(answer), MatchesRegex("ready\nfalse [0-9]+\n"));
  EXPECT_THAT(outer.identity->text, MatchesRegex(identityText(ANY_TIME, "0", "9", "0", "project-7")));
}

/// What the farm's own design tool makes of a script.
class ReportCheck : public Scenario {
 protected:
  std::string scriptOf(const char* host) {
    writeIdentity(identityText("9999999999", "0", "7", "0", "project-7"));
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

TEST_F(ReportCheck, FindsCutMixedAndChangedScripts) {
  const std::string script = scriptOf("1");
  EXPECT_EQ(fault(script), "");
  EXPECT_EQ(fault(""), "empty");
  for (std::size_t length = 1; length < script.size(); ++length) {
    ASSERT_EQ(fault(script.substr(0, length)), "torn") << length;
  }
  std::string mixed = script;
  mixed.replace(mixed.rfind("-key host -value \"1\""), 20, "-key host -value \"2\"");
  EXPECT_EQ(fault(mixed), "mixed");
  std::string changed = script;
  changed.replace(changed.find("project-7"), 9, "project-8");
  EXPECT_EQ(fault(changed), "checksum");
}

}  // namespace
}  // namespace vestra_test
