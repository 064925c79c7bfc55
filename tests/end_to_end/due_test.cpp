// At most one report a day for each project and product slot, while each attempt
// counts.

#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

class OnceADay : public Scenario {
 protected:
  OnceADay() { useTool(); }

  bool send(Vestra::ProductType product) {
    return sandbox.run(product, [] {}).answer.value();
  }
};

TEST_F(OnceADay, ASecondReportIsNotDueAndLeavesScriptAndRules) {
  const std::int64_t begin = now();
  const HostRun first = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(first.answer, true);
  EXPECT_THAT(first.identity->lastSendTimeDefault, AllOf(Ge(begin), Le(now())));
  EXPECT_EQ(first.identity->lastSendTimeType1, 0);
  EXPECT_EQ(first.identity->iteration, 2U);
  EXPECT_EQ(first.identity->orbeloFlow, false);
  const HostRun second = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(second.answer, false);
  EXPECT_THAT(second.toolRuns, IsEmpty());
  EXPECT_THAT(second, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", "2"));
  EXPECT_EQ(second.identity->iteration, 3U);
  EXPECT_THAT(filesInVestraDirectory(),
              ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(OnceADay, TheLabToolSharesTheSimulatorsSlotAndTheSecondSimulatorHasItsOwn) {
  EXPECT_TRUE(send(Vestra::TAVLO));
  EXPECT_FALSE(send(Vestra::KELVO));
  EXPECT_FALSE(send(static_cast<Vestra::ProductType>(7)));
  EXPECT_TRUE(send(Vestra::KELVO_ALT));
  EXPECT_FALSE(send(Vestra::KELVO_ALT));
}

TEST_F(OnceADay, TheSandboxMovesTheLastReportIntoThePast) {
  EXPECT_TRUE(send(Vestra::KELVO));
  sandbox.age(std::chrono::seconds(1000));
  EXPECT_FALSE(send(Vestra::KELVO));
  sandbox.ageUntilDue();
  EXPECT_TRUE(send(Vestra::KELVO));
}

TEST_F(OnceADay, AToolThatFailsCountsAsStarted) {
  useTool("exit 1");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_EQ(run.toolRuns.at(0).status, 1 << 8);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
  EXPECT_FALSE(send(Vestra::KELVO));
}

TEST_F(OnceADay, AToolThatIsMissingCountsAsStarted) {
  answers.execPath = "/no/such/tool";
  sandbox.setSupportAnswers(answers);
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_EQ(run.toolRuns.at(0).status, 127 << 8);
  EXPECT_THAT(readFile(inVestraDirectory("tavlo_vestra.log")), HasSubstr("/no/such/tool"));
}

TEST_F(OnceADay, AToolThatASignalEndsCountsAsStarted) {
  useTool("kill -KILL $$");
  EXPECT_TRUE(send(Vestra::KELVO));
}

}  // namespace
}  // namespace vestra_test
