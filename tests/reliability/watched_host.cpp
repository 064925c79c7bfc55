#include "reliability/watched_host.h"

namespace vestra_test {

using Oza::Vestra;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

void WatchedHost::SetUp() {
  if (const auto why = whyNothingIsTraced()) {
    GTEST_SKIP() << *why;
  }
}

std::vector<SystemCall> WatchedHost::callsOfARun() {
  workplace.reset();
  return runHost(workplace.start(), {Disturbance::WATCH}).calls;
}

void WatchedHost::expectThatAReportIsSent() {
  workplace.makeDue();
  HostStart start = workplace.start();
  start.keepsReportFiles = true;
  const HostEnd end = runHost(start);
  EXPECT_FALSE(end.signal);
  EXPECT_EQ(end.outcome, "answer true");
  EXPECT_EQ(end.output, "");
  EXPECT_THAT(contentOf(workplace.scriptFile()).value_or("no file"),
              AllOf(StartsWith("vestra_init -vestra_dir " + workplace.inVestraDirectory("") + "\n"),
                    HasSubstr("-key runs -value \"2\""), EndsWith("vestra_terminate\n")));
  EXPECT_THAT(contentOf(workplace.rulesFile()).value_or("no file"), SizeIs(1086));
  EXPECT_THAT(contentOf(workplace.settingsFile()).value_or("no file"), HasSubstr("RandomID="));
}

std::vector<Situation> allSituations() {
  std::vector<Situation> all;
  for (const auto product : {Vestra::KELVO, Vestra::TAVLO}) {
    all.push_back({product, Situation::NEW_PROJECT, Situation::NEW_HOME});
    all.push_back({product, Situation::NEW_PROJECT, Situation::KNOWN_HOME});
    all.push_back({product, Situation::KNOWN_PROJECT, Situation::HOME_WITHOUT_IDENTIFIER});
    all.push_back({product, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME});
  }
  return all;
}

std::string situationName(const testing::TestParamInfo<Situation>& info) {
  const char* const projects[] = {"NewProject", "KnownProject"};
  const char* const homes[] = {"NewHome", "HomeWithoutIdentifier", "KnownHome"};
  const std::string product = info.param.product == Vestra::TAVLO ? "LabTool" : "Simulator";
  return product + projects[info.param.project] + homes[info.param.home];
}

}  // namespace vestra_test
