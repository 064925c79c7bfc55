// What can be compared byte for byte, once the clock and the identifiers are held.

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include "support/files.h"

namespace {

using Oza::Vestra;
using testing::HasSubstr;
using testing::Not;
using namespace vestra::testkit;

constexpr std::time_t NOW = 1600000000;

/// A sandbox in which nothing is left to chance.
class HeldSandbox : public Sandbox {
 public:
  explicit HeldSandbox(std::time_t now = NOW) {
    SupportAnswers answers;
    answers.environment = "a#1#b#2#c#3#d#4#e#5#f#6";
    answers.registrationId = "REG";
    setSupportAnswers(answers);
    setIdentifiers("installation", "project");
    setNow(now);
  }

  HostRun runHost() {
    return run(Vestra::KELVO, [] { Vestra::add("runs", "2", Vestra::KELVO_USAGE); });
  }
};

TEST(AGoldenReport, IsTheSameInEachRun) {
  HeldSandbox sandbox;
  const HostRun run = sandbox.runHost();
  HeldSandbox other;
  const HostRun otherRun = other.runHost();
  ASSERT_THAT(run, WasSent());
  ASSERT_THAT(otherRun, WasSent());
  EXPECT_THAT(run.script, HasSubstr("-key random_id -value \"installation\""));
  EXPECT_EQ(sandbox.withoutDirectory(run.script), other.withoutDirectory(otherRun.script));
  const Report report = *run.report();
  EXPECT_THAT(report.html(), HasSubstr("<html"));
  EXPECT_THAT(report.xml(), HasSubstr("<?xml"));
  EXPECT_EQ(sandbox.withoutDirectory(report.html()), other.withoutDirectory(otherRun.report()->html()));
  EXPECT_EQ(sandbox.withoutDirectory(report.xml()), other.withoutDirectory(otherRun.report()->xml()));
  EXPECT_EQ(report.html(),
            vestra_test::readFile(sandbox.project() + "/vestra/usage_statistics_ext_kelvo.html"));
}

TEST(AHeldClock, DecidesTheReportsHourAndDay) {
  HeldSandbox sandbox;
  HeldSandbox anHourLater(NOW + 3600);
  const HostRun run = sandbox.runHost();
  EXPECT_EQ(run.identity->lastSendTimeDefault, NOW);
  EXPECT_NE(run.report()->clientId, anHourLater.runHost().report()->clientId);
  sandbox.setNow(NOW + 86400);
  EXPECT_THAT(sandbox.runHost(), Not(WasSent()));
  sandbox.setNow(NOW + 86401);
  EXPECT_THAT(sandbox.runHost(), WasSent());
}

// Longer ago than the years in which the tool looks for a kept script's hour.
TEST(AHeldClock, IsTheDesignToolsToo) {
  HeldSandbox sandbox(1000000000);
  const HostRun run = sandbox.runHost();
  ASSERT_THAT(run, WasSent());
  EXPECT_THAT(run.report()->warnings, testing::IsEmpty());
}

TEST(AHeldClock, IsTheSameInEachTimeZone) {
  HeldSandbox sandbox;
  const HostRun run = sandbox.runHost();
  setenv("TZ", "XYZ-5:30", 1);
  HeldSandbox elsewhere;
  const HostRun other = elsewhere.runHost();
  unsetenv("TZ");
  EXPECT_EQ(run.report()->clientId, other.report()->clientId);
}

TEST(HeldIdentifiers, ReplaceThoseOfAKnownProject) {
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] {});
  sandbox.setIdentifiers("mine", "my_project");
  sandbox.ageUntilDue();
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", "mine"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", "my_project"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", 2));
}

}  // namespace
