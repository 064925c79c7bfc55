// At most one report a day for each project and product slot, while each attempt
// counts.

#include "support/files.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using vestra::testkit::HasItem;
using vestra::testkit::HostRun;
using vestra::testkit::WasSent;

constexpr std::int64_t DAY = 86400;

class OnceADay : public Scenario {
 protected:
  OnceADay() { useRecordingTool(); }

  bool send(Vestra::ProductType product) {
    return sandbox.run(product, [] {}).answer.value();
  }
};

TEST_F(OnceADay, FirstReportIsDue) {
  const std::int64_t begin = now();
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_GE(run.identity->lastSendTimeDefault, begin);
  EXPECT_LE(run.identity->lastSendTimeDefault, now());
  EXPECT_EQ(run.identity->lastSendTimeType1, 0);
  EXPECT_EQ(run.identity->iteration, 2U);
  EXPECT_EQ(run.identity->orbeloFlow, false);
}

TEST_F(OnceADay, SecondReportOfTheDayIsNotDueAndLeavesScriptAndRules) {
  EXPECT_TRUE(send(Vestra::KELVO));
  const HostRun second = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(second.answer, false);
  EXPECT_THAT(second.toolRuns, IsEmpty());
  EXPECT_THAT(second, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", "2"));
  EXPECT_EQ(second.identity->iteration, 3U);
  EXPECT_THAT(filesInVestraDirectory(),
              ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(OnceADay, ReportADayLaterIsNotYetDue) {
  // The clock may go on by some minutes before the report looks at it.
  writeIdentity(std::to_string(now() - DAY + 900) + "\n0\n5\n0\np\n");
  EXPECT_FALSE(send(Vestra::KELVO));
}

TEST_F(OnceADay, ReportMoreThanADayLaterIsDue) {
  writeIdentity(std::to_string(now() - DAY - 1) + "\n0\n5\n0\np\n");
  EXPECT_TRUE(send(Vestra::KELVO));
}

TEST_F(OnceADay, LastReportInTheFutureHoldsTheNextBack) {
  const std::string future = std::to_string(now() + 1000000);
  writeIdentity(future + "\n0\n5\n0\np\n");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, false);
  EXPECT_EQ(run.identity->text, future + "\n0\n6\n0\np\n");
}

TEST_F(OnceADay, TimesAtTheEdgesOfTheirTypeAreCompared) {
  writeIdentity("-9223372036854775808\n9223372036854775807\n5\n0\np\n");
  EXPECT_FALSE(send(Vestra::KELVO_ALT));
  EXPECT_TRUE(send(Vestra::KELVO));
}

TEST_F(OnceADay, TheSecondSimulatorSlotHasATimeOfItsOwn) {
  EXPECT_TRUE(send(Vestra::KELVO));
  EXPECT_TRUE(send(Vestra::KELVO_ALT));
  EXPECT_FALSE(send(Vestra::KELVO));
  EXPECT_FALSE(send(Vestra::KELVO_ALT));
  const HostRun run = sandbox.run(Vestra::KELVO_ALT, [] {});
  EXPECT_EQ(run.identity->iteration, 6U);
  EXPECT_GT(run.identity->lastSendTimeDefault, 0);
  EXPECT_GT(run.identity->lastSendTimeType1, 0);
}

TEST_F(OnceADay, TheLabToolSharesTheSimulatorsSlot) {
  EXPECT_TRUE(send(Vestra::TAVLO));
  EXPECT_FALSE(send(Vestra::KELVO));
  EXPECT_FALSE(send(static_cast<Vestra::ProductType>(7)));
  EXPECT_TRUE(send(Vestra::KELVO_ALT));
}

TEST_F(OnceADay, SandboxMovesTheLastReportIntoThePast) {
  EXPECT_TRUE(send(Vestra::KELVO));
  sandbox.age(std::chrono::seconds(1000));
  EXPECT_FALSE(send(Vestra::KELVO));
  sandbox.ageUntilDue();
  EXPECT_TRUE(send(Vestra::KELVO));
}

TEST_F(OnceADay, FailingToolCountsAsStarted) {
  useRecordingTool("exit 1");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_EQ(run.toolRuns.at(0).status, 1 << 8);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
  EXPECT_FALSE(send(Vestra::KELVO));
}

TEST_F(OnceADay, MissingToolCountsAsStarted) {
  answers.execPath = "/no/such/tool";
  sandbox.setSupportAnswers(answers);
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_EQ(run.answer, true);
  EXPECT_EQ(run.toolRuns.at(0).status, 127 << 8);
  EXPECT_THAT(readFile(inVestraDirectory("tavlo_vestra.log")), testing::HasSubstr("/no/such/tool"));
}

TEST_F(OnceADay, ToolEndedByASignalCountsAsStarted) {
  useRecordingTool("kill -KILL $$");
  EXPECT_TRUE(send(Vestra::KELVO));
}

}  // namespace
}  // namespace vestra_test
