#include "reliability/watched_host.h"

namespace vestra_test {

void WatchedHost::SetUp() {
  if (const auto why = whyNothingIsTraced()) {
    GTEST_SKIP() << *why;
  }
}

std::vector<SystemCall> WatchedHost::callsOfARun() {
  workplace.reset();
  return runHost(workplace.start(), {Disturbance::WATCH}).calls;
}

void WatchedHost::expectQuietEnd(const HostEnd& end, const Matcher<std::string>& outcome) {
  EXPECT_FALSE(end.signal) << end.signal.value_or(0);
  EXPECT_THAT(end.outcome, outcome);
  EXPECT_EQ(end.descriptorsLost, 0);
  EXPECT_EQ(end.output, "");
}

void WatchedHost::expectThatAReportIsSent() {
  workplace.makeDue();
  HostStart start = workplace.start();
  start.keepsReportFiles = true;
  expectQuietEnd(runHost(start), "answer true");
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

std::string situationName(const TestParamInfo<Situation>& info) {
  const char* const projects[] = {"NewProject", "KnownProject"};
  const char* const homes[] = {"NewHome", "HomeWithoutIdentifier", "KnownHome"};
  const std::string product = info.param.product == Vestra::TAVLO ? "LabTool" : "Simulator";
  return product + projects[info.param.project] + homes[info.param.home];
}

}  // namespace vestra_test
