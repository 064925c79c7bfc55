#include "usage_report.h"

#include <gtest/gtest.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

using Oza::Vestra;
using testing::Not;
using vestra::testkit::HasItem;
using vestra::testkit::HasNoHazards;
using vestra::testkit::Sandbox;
using vestra::testkit::WasSent;

TEST(UsageReport, SaysWhatWasSimulated) {
  Sandbox sandbox;
  const auto run = sandbox.run(Vestra::KELVO, [] { reportUsage({"orb-200", "batch", 2}); });
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "target_device", "orb-200"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_COMMAND_LINE_OPTIONS, "mode", "batch"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", 2));
  EXPECT_THAT(run, HasNoHazards());
}

TEST(UsageReport, WarnsOfAModeThatTclWouldRead) {
  Sandbox sandbox;
  const auto run = sandbox.run(Vestra::KELVO, [] { reportUsage({"orb-200", "$MODE", 2}); });
  ASSERT_EQ(run.hazards().size(), 1U);
  EXPECT_EQ(run.hazards()[0].reason, "the value holds a dollar sign, which begins a variable");
}

TEST(UsageReport, IsSentOnceADay) {
  Sandbox sandbox;
  const auto host = [] { reportUsage({"orb-200", "gui", 1}); };
  EXPECT_THAT(sandbox.run(Vestra::KELVO, host), WasSent());
  EXPECT_THAT(sandbox.run(Vestra::KELVO, host), Not(WasSent()));
  sandbox.ageUntilDue();
  EXPECT_THAT(sandbox.run(Vestra::KELVO, host), WasSent());
}
