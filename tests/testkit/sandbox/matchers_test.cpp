// What the matchers say of runs, and how runs print themselves.

#include <csignal>
#include <sstream>
#include <stdexcept>

#include <vestra/testkit/matchers.h>

namespace {

using Oza::Vestra;
using testing::AllOf;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;
using testing::StartsWith;
using testing::StringMatchResultListener;
using vestra::testkit::EndedQuietly;
using vestra::testkit::Exception;
using vestra::testkit::HasItem;
using vestra::testkit::HasNoHazards;
using vestra::testkit::HostRun;
using vestra::testkit::Identity;
using vestra::testkit::Item;
using vestra::testkit::Report;
using vestra::testkit::Threw;
using vestra::testkit::ToolRun;
using vestra::testkit::WasSent;

const Item RUNS{"kelvo", "kelvo\\usage", "runs", "2"};

/// A run whose report holds one item of the simulator's usage.
HostRun sentRun() {
  Report report;
  report.clientId = "17";
  report.registrationId = "REG";
  report.folder = "/nowhere/0001-kelvo";
  report.items = {RUNS};
  HostRun run;
  run.answer = true;
  run.exitStatus = 0;
  run.sends = {{"/project", Vestra::KELVO, true}};
  run.toolRuns = {{"tool -mode batch", 0, "done\n", "", ""}};
  run.reports = {report};
  run.script = "vestra_terminate\n";
  run.writtenItems = {RUNS};
  return run;
}

/// A run that was answered false, for a reason that the test adds.
HostRun unsentRun() {
  HostRun run;
  run.answer = false;
  run.exitStatus = 0;
  run.sends = {{"/project", Vestra::KELVO, false}};
  run.identityFile = "/project/vestra/.kelvo_vestrra.info";
  return run;
}

HostRun crashedRun() {
  HostRun run;
  run.signal = SIGSEGV;
  return run;
}

HostRun throwingRun() {
  HostRun run;
  run.exception = Exception{"std::out_of_range", "too far", {"std::logic_error", "std::exception"}};
  run.exitStatus = 0;
  return run;
}

template <typename Matcher>
std::string explanation(const Matcher& matcher, const HostRun& run) {
  StringMatchResultListener listener;
  testing::ExplainMatchResult(matcher, run, &listener);
  return listener.str();
}

/// The reason alone, without the account of the run behind it.
template <typename Matcher>
std::string reason(const Matcher& matcher, const HostRun& run) {
  const std::string text = explanation(matcher, run);
  return text.substr(0, text.find("\na run "));
}

std::string accountOf(const HostRun& run) {
  std::ostringstream out;
  out << run;
  return out.str();
}

TEST(WasSent, NeedsATrueAnswerAndAReport) {
  HostRun run = sentRun();
  EXPECT_THAT(run, WasSent());
  run.answer = false;
  EXPECT_THAT(run, Not(WasSent()));
  run = sentRun();
  run.reports.clear();
  EXPECT_THAT(run, Not(WasSent()));
}

TEST(WasSent, SaysUntilWhenAReportIsNotDueAndWhichFileSaysSo) {
  HostRun run = unsentRun();
  run.script = "vestra_terminate\n";
  run.identity = Identity{"", 1600000000, 1700000000, 3, false, "p"};
  EXPECT_EQ(
      reason(WasSent(), run),
      "which was not due until 2020-09-14 12:26:41 UTC: /project/vestra/.kelvo_vestrra.info says that the "
      "last report went at 2020-09-13 12:26:40 UTC");
  run.sends[0].product = Vestra::KELVO_ALT;
  EXPECT_THAT(reason(WasSent(), run), StartsWith("which was not due until 2023-11-15 22:13:21 UTC"));
}

TEST(WasSent, SaysThatThereWasNoSupportLibrary) {
  HostRun run = unsentRun();
  run.rulesFile = "rules";
  EXPECT_EQ(reason(WasSent(), run), "which found no support library, libqvzcommonvestrasupport.so");
}

TEST(WasSent, SaysWhichIdentityFileCouldNotBeUsed) {
  EXPECT_EQ(reason(WasSent(), unsentRun()),
            "which could not use the identity file /project/vestra/.kelvo_vestrra.info");
}

TEST(WasSent, SaysWhatTheDesignToolSaidThatMadeNoReport) {
  HostRun run = sentRun();
  run.reports.clear();
  run.toolRuns[0].status = 1 << 8;
  run.toolRuns[0].output = "read 3 items\nkelvo_vestra.tcl:4: extra characters\n";
  EXPECT_EQ(reason(WasSent(), run),
            "whose design tool ended with status 1 and made no report: kelvo_vestra.tcl:4: extra characters");
}

TEST(WasSent, SaysThatSendWasNotCalled) {
  HostRun run;
  run.exitStatus = 0;
  EXPECT_EQ(reason(WasSent(), run), "whose host gave no answer and called no send");
}

TEST(WasSent, SaysHowAHostEndedThatCannotTell) {
  EXPECT_EQ(reason(WasSent(), crashedRun()), "whose host was ended by signal 11 (Segmentation fault)");
  EXPECT_EQ(reason(WasSent(), throwingRun()), "whose host threw std::out_of_range \"too far\"");
  HostRun late = crashedRun();
  late.timedOut = true;
  EXPECT_EQ(reason(WasSent(), late), "whose time was up");
}

TEST(WasSent, IsNeitherTrueNorFalseOfAHostThatCrashedOrThrew) {
  for (const HostRun& run : {crashedRun(), throwingRun()}) {
    EXPECT_FALSE(testing::Value(run, WasSent()));
    EXPECT_FALSE(testing::Value(run, Not(WasSent())));
  }
}

TEST(HasItem, LooksAtSectionKeyAndValue) {
  const HostRun run = sentRun();
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", "2"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", std::string("2")));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", StartsWith("2")));
  EXPECT_THAT(run, Not(HasItem(Vestra::KELVO_USAGE, "runs", "3")));
  EXPECT_THAT(run, Not(HasItem(Vestra::KELVO_USAGE, "walks", "2")));
  EXPECT_THAT(run, Not(HasItem(Vestra::TAVLO_USAGE, "runs", "2")));
}

TEST(HasItem, TakesNumbersAsHostsWriteThem) {
  HostRun run = sentRun();
  run.reports[0].items.push_back({"kelvo", "kelvo\\usage", "hours", "1.5"});
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", 2));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", 2UL));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "hours", 1.5));
  EXPECT_THAT(run, Not(HasItem(Vestra::KELVO_USAGE, "runs", 3)));
}

TEST(HasItem, SaysWhatItWants) {
  EXPECT_EQ(testing::DescribeMatcher<HostRun>(HasItem(Vestra::KELVO_USAGE, "runs", "3")),
            "has an item \"runs\" in kelvo\\usage whose value is equal to \"3\"");
  EXPECT_EQ(testing::DescribeMatcher<HostRun>(Not(HasItem(Vestra::KELVO_USAGE, "runs", 3))),
            "has no item \"runs\" in kelvo\\usage whose value is equal to \"3\"");
}

TEST(HasItem, SaysTheValueThatIsThereInstead) {
  EXPECT_EQ(reason(HasItem(Vestra::KELVO_USAGE, "runs", "3"), sentRun()),
            "whose \"runs\" in kelvo\\usage is \"2\"");
}

TEST(HasItem, NamesTheNearestKey) {
  EXPECT_EQ(reason(HasItem(Vestra::KELVO_USAGE, "rums", "2"), sentRun()),
            "which has no key \"rums\" in kelvo\\usage; the nearest is \"runs\" = \"2\"");
  EXPECT_EQ(reason(HasItem(Vestra::KELVO_USAGE, "elapsed", "2"), sentRun()),
            "which has no key \"elapsed\" in kelvo\\usage");
}

TEST(HasItem, NamesTheSectionThatHasTheKey) {
  EXPECT_EQ(reason(HasItem(Vestra::TAVLO_USAGE, "runs", "2"), sentRun()),
            "which has no key \"runs\" in tavlo\\usage; kelvo\\usage has it: \"2\"");
}

TEST(HasItem, PutsTheReasonBeforeTheRun) {
  EXPECT_THAT(explanation(HasItem(Vestra::KELVO_USAGE, "runs", "3"), sentRun()),
              StartsWith("whose \"runs\" in kelvo\\usage is \"2\"\na run whose host answered true\n"));
}

TEST(HasItem, LooksAtTheScriptWhenNothingWasReported) {
  HostRun run;
  run.writtenItems = {Item{"tavlo", "tavlo\\usage", "probes", "4"}};
  EXPECT_THAT(run, HasItem(Vestra::TAVLO_USAGE, "probes", "4"));
}

TEST(HasNoHazards, ListsThem) {
  HostRun run;
  run.writtenItems = {Item{"kelvo", "kelvo\\usage", "path", "C:\\temp"}};
  EXPECT_EQ(reason(HasNoHazards(), run),
            "with hazards:\n  kelvo\\usage: path = \"C:\\temp\": the value holds a backslash, which changes "
            "what follows it");
  EXPECT_THAT(run, Not(HasNoHazards()));
}

TEST(HasNoHazards, ComparesWithWhatTheDesignToolReports) {
  HostRun run = sentRun();
  EXPECT_THAT(run, HasNoHazards());
  run.reports[0].items[0].value = "3";
  EXPECT_THAT(reason(HasNoHazards(), run), HasSubstr("the design tool reports something else in its place"));
  run.reports[0].items.clear();
  EXPECT_THAT(reason(HasNoHazards(), run), HasSubstr("the design tool does not report it"));
}

TEST(AMatcherOfTheScript, SaysThatThereIsNone) {
  const HostRun run = unsentRun();
  const auto hasItem = HasItem(Vestra::KELVO_USAGE, "runs", "2");
  EXPECT_FALSE(testing::Value(run, HasNoHazards()));
  EXPECT_FALSE(testing::Value(run, Not(HasNoHazards())));
  EXPECT_FALSE(testing::Value(run, hasItem));
  EXPECT_FALSE(testing::Value(run, Not(hasItem)));
  EXPECT_EQ(reason(HasNoHazards(), run),
            "which has no script to look into, which could not use the identity file "
            "/project/vestra/.kelvo_vestrra.info");
}

TEST(Threw, ComparesTypeAndText) {
  const HostRun run = throwingRun();
  EXPECT_THAT(run, Threw("std::out_of_range", "too far"));
  EXPECT_THAT(run, Threw("std::out_of_range", HasSubstr("far")));
  EXPECT_THAT(run, Not(Threw("std::out_of_range", "near")));
  EXPECT_THAT(run, Not(Threw("std::runtime_error", "too far")));
  EXPECT_THAT(sentRun(), Not(Threw("std::out_of_range", "too far")));
}

TEST(Threw, TakesTheTypeItselfAndWhatItDerivesFrom) {
  EXPECT_THAT(throwingRun(), Threw<std::out_of_range>("too far"));
  EXPECT_THAT(throwingRun(), Threw<std::logic_error>(HasSubstr("far")));
  EXPECT_THAT(throwingRun(), Threw<std::exception>());
  EXPECT_THAT(throwingRun(), Not(Threw<std::runtime_error>()));
  EXPECT_EQ(reason(Threw<std::logic_error>(), sentRun()), "whose host answered true");
}

TEST(EndedQuietly, NeedsStatusZeroAndNoOutput) {
  EXPECT_THAT(sentRun(), EndedQuietly());
  HostRun run = sentRun();
  run.output = "x";
  EXPECT_THAT(run, Not(EndedQuietly()));
  run = sentRun();
  run.errorOutput = "x";
  EXPECT_THAT(run, Not(EndedQuietly()));
  EXPECT_THAT(crashedRun(), Not(EndedQuietly()));
}

TEST(ARunsAccount, ShowsAllThatThereIs) {
  HostRun run = sentRun();
  run.output = "hello\n";
  run.hostCommands = {{"ls", 0}};
  run.identity = Identity{"5\n0\n2\n0\np\n", 5, 0, 2, false, "p"};
  run.settings = vestra::testkit::Settings{"RandomID=r\n", "r"};
  run.failedAssertions = {{"host.cpp", 7, "Failed"}};
  EXPECT_EQ(accountOf(run),
            "a run whose host answered true\n"
            "failed assertions:\n"
            "  host.cpp:7: Failed\n"
            "the host wrote:\n"
            "  hello\n"
            "the host's own commands:\n"
            "  ls, status 0\n"
            "asked for:\n"
            "  send(\"/project\", KELVO): true\n"
            "started:\n"
            "  tool -mode batch, status 0\n"
            "    done\n"
            "report 17 of REG\n"
            "items as the design tool read them:\n"
            "  kelvo\\usage: runs = \"2\"\n"
            "script:\n"
            "  vestra_terminate\n"
            "identity:\n"
            "  5\n  0\n  2\n  0\n  p\n"
            "settings:\n"
            "  RandomID=r\n");
}

TEST(ARunsAccount, ShowsHowTheHostEndedAndWhatItPrinted) {
  HostRun run = crashedRun();
  run.errorOutput = "oops";
  run.writtenItems = {Item{"kelvo", "kelvo\\usage", "k\x01", "v"}};
  EXPECT_EQ(accountOf(run),
            "a run whose host was ended by signal 11 (Segmentation fault)\n"
            "the host wrote on standard error:\n"
            "  oops\n"
            "the design tool was not started\n"
            "items as they were written:\n"
            "  kelvo\\usage: k\\x01 = \"v\"\n");
}

TEST(ARunsAccount, NamesNoDirectoryThatIsGone) {
  HostRun run = unsentRun();
  run.directory = "/nowhere/sandbox";
  run.identityFile = "/nowhere/sandbox/project/vestra/.kelvo_vestrra.info";
  run.output = "in /nowhere/sandbox/project\n";
  EXPECT_THAT(accountOf(run), AllOf(HasSubstr("in SANDBOX/project\n"), Not(HasSubstr("/nowhere/sandbox"))));
  EXPECT_EQ(reason(WasSent(), run),
            "which could not use the identity file SANDBOX/project/vestra/.kelvo_vestrra.info");
}

TEST(EachPartOfARun, PrintsItselfReadably) {
  using namespace vestra::testkit;
  EXPECT_EQ(testing::PrintToString(sentRun()), "a run whose host answered true");
  EXPECT_EQ(testing::PrintToString(AddedItem{Vestra::KELVO_USAGE, "k", "v"}), "kelvo\\usage: k = \"v\"");
  EXPECT_EQ(testing::PrintToString(Send{"/p", Vestra::KELVO_ALT, std::nullopt}),
            "send(\"/p\", KELVO_ALT): no answer");
  EXPECT_EQ(testing::PrintToString(Send{"/p", Vestra::TAVLO, false}), "send(\"/p\", TAVLO): false");
  EXPECT_EQ(testing::PrintToString(Send{"/p", static_cast<Vestra::ProductType>(7), true}),
            "send(\"/p\", 7): true");
  EXPECT_EQ(testing::PrintToString(HostCommand{"ls", std::nullopt}), "ls, not ended");
  EXPECT_EQ(testing::PrintToString(Exception{"int", "", {}}), "int \"\"");
  EXPECT_EQ(testing::PrintToString(Rule{"kelvo", "kelvo\\usage", "usage", "Usage", "FennoxStatsStyle"}),
            "kelvo kelvo\\usage: XML \"usage\", HTML \"Usage\" as FennoxStatsStyle");
  EXPECT_EQ(testing::PrintToString(Hazard{RUNS, "a reason"}), "kelvo\\usage: runs = \"2\": a reason");
}

}  // namespace
