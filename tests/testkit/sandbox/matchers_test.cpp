#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include <sstream>

namespace {

using Oza::Vestra;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::StringMatchResultListener;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HasItem;
using vestra::testkit::HasNoHazards;
using vestra::testkit::HostRun;
using vestra::testkit::Item;
using vestra::testkit::Report;
using vestra::testkit::Threw;
using vestra::testkit::WasSent;

/// A run whose report holds one item of the simulator's usage.
HostRun sentRun() {
  Report report;
  report.clientId = "17";
  report.registrationId = "REG";
  report.folder = "/outbox/0001-kelvo";
  report.items = {Item{"kelvo", "kelvo\\usage", "runs", "2"}};
  HostRun run;
  run.answer = true;
  run.exitStatus = 0;
  run.toolRuns = {{"tool -mode batch", 0, "done\n", "", ""}};
  run.reports = {report};
  return run;
}

template <typename Matcher>
std::string explanation(const Matcher& matcher, const HostRun& run) {
  StringMatchResultListener listener;
  testing::ExplainMatchResult(matcher, run, &listener);
  return listener.str();
}

TEST(WasSent, NeedsATrueAnswerAndAReport) {
  HostRun run = sentRun();
  EXPECT_THAT(run, WasSent());
  run.answer = false;
  EXPECT_THAT(run, Not(WasSent()));
  run = sentRun();
  run.reports.clear();
  EXPECT_THAT(run, Not(WasSent()));
  run = sentRun();
  run.answer.reset();
  EXPECT_EQ(explanation(WasSent(), run), "whose send did not give true");
}

TEST(HasItem, LooksAtSectionKeyAndValue) {
  const HostRun run = sentRun();
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", "2"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", StartsWith("2")));
  EXPECT_THAT(run, Not(HasItem(Vestra::KELVO_USAGE, "runs", "3")));
  EXPECT_THAT(run, Not(HasItem(Vestra::KELVO_USAGE, "walks", "2")));
  EXPECT_THAT(run, Not(HasItem(Vestra::TAVLO_USAGE, "runs", "2")));
  EXPECT_EQ(explanation(HasItem(Vestra::KELVO_USAGE, "runs", "3"), run), "whose value is { \"2\" }");
  EXPECT_EQ(explanation(HasItem(Vestra::KELVO_USAGE, "walks", "3"), run), "which has no such key");
}

TEST(HasItem, SaysWhatItWants) {
  EXPECT_EQ(testing::DescribeMatcher<HostRun>(HasItem(Vestra::KELVO_USAGE, "runs", "3")),
            "has an item \"runs\" in kelvo\\usage whose value is equal to \"3\"");
}

TEST(HasItem, LooksAtTheScriptWhenNothingWasReported) {
  HostRun run;
  run.writtenItems = {Item{"tavlo", "tavlo\\usage", "probes", "4"}};
  EXPECT_THAT(run, HasItem(Vestra::TAVLO_USAGE, "probes", "4"));
}

TEST(HasNoHazards, ListsThem) {
  HostRun run;
  run.writtenItems = {Item{"kelvo", "kelvo\\usage", "path", "C:\\temp"}};
  EXPECT_EQ(
      explanation(HasNoHazards(), run),
      "with hazards:\n  kelvo\\usage: path = \"C:\\temp\": the value holds a backslash, which changes what "
      "follows it");
}

TEST(Threw, ComparesTypeAndText) {
  HostRun run;
  run.exception = vestra::testkit::Exception{"std::logic_error", "no"};
  EXPECT_THAT(run, Threw("std::logic_error", "no"));
  EXPECT_THAT(run, Not(Threw("std::logic_error", "yes")));
  EXPECT_THAT(run, Not(Threw("std::exception", "no")));
  EXPECT_THAT(sentRun(), Not(Threw("std::logic_error", "no")));
}

TEST(EndedQuietly, NeedsStatusZeroAndNoOutput) {
  EXPECT_THAT(sentRun(), EndedQuietly());
  HostRun run = sentRun();
  run.output = "x";
  EXPECT_THAT(run, Not(EndedQuietly()));
  run = sentRun();
  run.errorOutput = "x";
  EXPECT_THAT(run, Not(EndedQuietly()));
  run = sentRun();
  run.exitStatus.reset();
  run.signal = 11;
  EXPECT_THAT(run, Not(EndedQuietly()));
}

TEST(AFailure, ShowsTheWholeRun) {
  EXPECT_EQ(testing::PrintToString(sentRun()),
            "run of a host\n"
            "answer: true\n"
            "shell: tool -mode batch\n"
            "  status 0\n"
            "  the tool wrote:\n"
            "done\n"
            "report 17 of REG, /outbox/0001-kelvo\n"
            "  as the design tool read it:\n"
            "  kelvo\\usage: runs = \"2\"\n");
}

TEST(AFailure, ShowsHowTheHostEndedAndWhatItPrinted) {
  HostRun run;
  run.signal = 11;
  run.errorOutput = "oops";
  run.writtenItems = {Item{"kelvo", "kelvo\\usage", "k\x01", "v"}};
  EXPECT_EQ(testing::PrintToString(run),
            "run of a host\n"
            "ended: by signal 11 (Segmentation fault)\n"
            "the host wrote on standard error:\n"
            "oops\n"
            "the design tool was not started\n"
            "script, as it was written:\n"
            "  kelvo\\usage: k\\x01 = \"v\"\n");
  run.timedOut = true;
  EXPECT_THAT(testing::PrintToString(run), HasSubstr("ended: its time was up\n"));
  HostRun thrown;
  thrown.exception = vestra::testkit::Exception{"int", ""};
  thrown.exitStatus = 3;
  EXPECT_THAT(testing::PrintToString(thrown), HasSubstr("ended: with int \"\"\nexit status: 3\n"));
}

}  // namespace
