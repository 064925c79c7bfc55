// What the matchers make of runs, and what they say of them.

#include <csignal>
#include <functional>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest-spi.h>
#include <vestra/testkit/matchers.h>

namespace {

using Oza::Vestra;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;
using namespace vestra::testkit;

constexpr auto MATCHES = Verdict::MATCHES;
constexpr auto DIFFERS = Verdict::DIFFERS;
constexpr auto CANNOT_TELL = Verdict::CANNOT_TELL;

const Item RUNS{"kelvo", "kelvo\\usage", "runs", "2"};

/// A run with what the changes make of it.
HostRun with(HostRun run, const std::function<void(HostRun&)>& change) {
  change(run);
  return run;
}

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

/// A run whose `send` answered false, for a reason that the test adds.
HostRun unsentRun() {
  HostRun run;
  run.answer = false;
  run.exitStatus = 0;
  run.sends = {{"/project", Vestra::KELVO, false}};
  run.identityFile = "/project/vestra/.kelvo_vestrra.info";
  return run;
}

HostRun notDueRun() {
  HostRun run = unsentRun();
  run.script = "vestra_terminate\n";
  run.writtenItems = {RUNS};
  run.identity = Identity{"", 1600000000, 1700000000, 3, false, "p"};
  return run;
}

HostRun crashedRun() {
  HostRun run;
  run.signal = SIGSEGV;
  return run;
}

HostRun crashedAfterSend() {
  return with(sentRun(), [](HostRun& run) {
    run.answer.reset();
    run.exitStatus.reset();
    run.signal = SIGSEGV;
  });
}

HostRun throwingRun() {
  HostRun run;
  run.exception = Exception{"std::out_of_range", "too far", {"std::logic_error", "std::exception"}};
  run.exitStatus = 0;
  return run;
}

HostRun runThatWrote(const std::string& errors, int status = 0) {
  return with(sentRun(), [&](HostRun& run) {
    run.errorOutput = errors;
    run.exitStatus = status;
  });
}

template <typename Matched, typename Matcher>
Verdict verdictOf(const Matched& matched, const Matcher& matcher) {
  const bool matches = testing::Matches(matcher)(matched);
  const bool differs = testing::Matches(Not(matcher))(matched);
  EXPECT_FALSE(matches && differs);
  return matches ? MATCHES : differs ? DIFFERS : CANNOT_TELL;
}

TEST(AMatcher, JudgesARunOrCannotTell) {
  const auto unsound = with(sentRun(), [](HostRun& run) { run.unsoundness = {"it ran env -i"}; });
  const auto left = with(sentRun(), [](HostRun& run) {
    run.answer.reset();
    run.exitStatus = 3;
  });
  const auto answeredFalse = with(sentRun(), [](HostRun& run) { run.answer = false; });
  const auto sentTwice = with(sentRun(), [](HostRun& run) {
    run.answer = false;
    run.sends.push_back({"/project", Vestra::KELVO, false});
  });
  const auto unreported = with(sentRun(), [](HostRun& run) { run.reports.clear(); });
  const auto threwInSend = with(sentRun(), [](HostRun& run) {
    run.sends[0].answer.reset();
    run.sends[0].exception = Exception{"std::logic_error", "null", {}};
  });
  const auto late = with(sentRun(), [](HostRun& run) { run.timedOut = true; });
  const auto warned =
      with(sentRun(), [](HostRun& run) { run.reports[0].warnings = {"s.tcl:1: warning: x"}; });
  const auto noisy = with(sentRun(), [](HostRun& run) { run.output = "x"; });
  const auto outlived = with(sentRun(), [](HostRun& run) { run.outlivingProcesses = {"sleep 600"}; });
  const auto leaking = runThatWrote("==9==ERROR: LeakSanitizer: detected memory leaks\n", 1);
  const auto corrupting = runThatWrote("==9==ERROR: AddressSanitizer: heap-use-after-free on address\n", 1);
  const auto racing = runThatWrote("WARNING: ThreadSanitizer: data race (pid=9)\n", 66);
  const auto undefined = runThatWrote("host.cpp:3:5: runtime error: signed integer overflow\n");
  const RunMatcher runs = HasItem(Vestra::KELVO_USAGE, "runs", "2");
  const RunMatcher walks = HasItem(Vestra::KELVO_USAGE, "walks", "2");
  const RunMatcher threw = Threw<std::logic_error>();

  struct Case {
    const char* name;
    HostRun run;
    RunMatcher matcher;
    Verdict verdict;
  };
  const std::vector<Case> cases{
      {"sent", sentRun(), WasSent(), MATCHES},
      {"the host's code gave false", answeredFalse, WasSent(), MATCHES},
      {"the host left with a status", left, WasSent(), MATCHES},
      {"a second send was not due", sentTwice, WasSent(), MATCHES},
      {"found leaking at its end", leaking, WasSent(), MATCHES},
      {"not due", notDueRun(), WasSent(), DIFFERS},
      {"the tool made no report", unreported, WasSent(), DIFFERS},
      {"a report, but no answer", threwInSend, WasSent(), CANNOT_TELL},
      {"crashed", crashedRun(), WasSent(), CANNOT_TELL},
      {"crashed after send", crashedAfterSend(), WasSent(), CANNOT_TELL},
      {"ended by a sanitizer", corrupting, WasSent(), CANNOT_TELL},
      {"threw", throwingRun(), WasSent(), CANNOT_TELL},
      {"unsound", unsound, WasSent(), CANNOT_TELL},
      {"item", sentRun(), runs, MATCHES},
      {"item of a crashed host", crashedAfterSend(), runs, MATCHES},
      {"no item", sentRun(), walks, DIFFERS},
      {"no item of a crashed host", crashedAfterSend(), walks, CANNOT_TELL},
      {"no script", unsentRun(), runs, CANNOT_TELL},
      {"not read to its end", late, walks, CANNOT_TELL},
      {"item, unsound", unsound, runs, CANNOT_TELL},
      {"items", sentRun(), ItemsAre(Vestra::KELVO_USAGE, ElementsAre(Pair("runs", "2"))), MATCHES},
      {"no items", sentRun(), ItemsAre(Vestra::TAVLO_USAGE, IsEmpty()), MATCHES},
      {"other items", sentRun(), ItemsAre(Vestra::KELVO_USAGE, IsEmpty()), DIFFERS},
      {"items without a script", unsentRun(), ItemsAre(Vestra::KELVO_USAGE, IsEmpty()), CANNOT_TELL},
      {"sends", sentRun(), SendsAre(ElementsAre(Send{"/project", Vestra::KELVO, true})), MATCHES},
      {"another product", sentRun(), SendsAre(Contains(Send{"/project", Vestra::TAVLO, true})), DIFFERS},
      {"another directory", sentRun(), SendsAre(Contains(Send{"/other", Vestra::KELVO, true})), DIFFERS},
      {"another answer", sentRun(), SendsAre(Contains(Send{"/project", Vestra::KELVO, false})), DIFFERS},
      {"one send of two", sentTwice, SendsAre(SizeIs(1)), DIFFERS},
      {"no hazards", sentRun(), HasNoHazards(), MATCHES},
      {"no hazards of a crashed host", crashedAfterSend(), HasNoHazards(), CANNOT_TELL},
      {"hazards without a script", unsentRun(), HasNoHazards(), CANNOT_TELL},
      {"no warnings", sentRun(), HasNoWarnings(), MATCHES},
      {"warnings", warned, HasNoWarnings(), DIFFERS},
      {"warnings without a report", notDueRun(), HasNoWarnings(), CANNOT_TELL},
      {"no findings", sentRun(), HasNoSanitizerFindings(), MATCHES},
      {"a leak", leaking, HasNoSanitizerFindings(), DIFFERS},
      {"a race", racing, HasNoSanitizerFindings(), DIFFERS},
      {"an overflow", undefined, HasNoSanitizerFindings(), DIFFERS},
      {"a host's own words", runThatWrote("parser: runtime error: 5\n"), HasNoSanitizerFindings(), MATCHES},
      {"no findings of a crashed host", crashedRun(), HasNoSanitizerFindings(), CANNOT_TELL},
      {"an exception", throwingRun(), threw, MATCHES},
      {"no exception", sentRun(), threw, DIFFERS},
      {"another exception", throwingRun(), Threw<std::runtime_error>(), DIFFERS},
      {"an exception's text", throwingRun(), Threw<std::out_of_range>(HasSubstr("far")), MATCHES},
      {"another text", throwingRun(), Threw<std::out_of_range>("near"), DIFFERS},
      {"no exception of a crashed host", crashedRun(), threw, CANNOT_TELL},
      {"quiet", sentRun(), EndedQuietly(), MATCHES},
      {"loud", noisy, EndedQuietly(), DIFFERS},
      {"left with a status", left, EndedQuietly(), DIFFERS},
      {"crashed loudly", crashedRun(), EndedQuietly(), DIFFERS},
      {"outlived", outlived, EndedQuietly(), DIFFERS},
      {"unsound and quiet", unsound, EndedQuietly(), CANNOT_TELL},
      {"a quiet race", with(racing, [](HostRun& run) { run.exitStatus = 0; }), EndedQuietly(), DIFFERS},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(verdictOf(each.run, each.matcher), each.verdict) << each.name;
  }
}

TEST(ANegation, MatchesNoHostThatCrashedHoweverItIsComposed) {
  const testing::Matcher<HostRun> stored = WasSent();
  const RunMatcher walks = HasItem(Vestra::KELVO_USAGE, "walks", "2");
  const std::vector<testing::Matcher<const HostRun&>> matchers{
      testing::SafeMatcherCast<const HostRun&>(stored),
      Not(WasSent()),
      AllOf(WasSent(), walks),
      AllOf(EndedQuietly(), WasSent()),
      AnyOf(WasSent(), walks),
      walks};
  for (const HostRun& run : {crashedRun(), crashedAfterSend()}) {
    for (const auto& matcher : matchers) {
      EXPECT_EQ(verdictOf(run, matcher), CANNOT_TELL) << testing::DescribeMatcher<const HostRun&>(matcher);
    }
    const std::vector<HostRun> runs{notDueRun(), run};
    EXPECT_EQ(verdictOf(runs, Contains(WasSent())), CANNOT_TELL);
    EXPECT_EQ(verdictOf(runs, Each(EndedQuietly())), CANNOT_TELL);
    EXPECT_EQ(verdictOf(runs, ElementsAre(Not(WasSent()), WasSent())), CANNOT_TELL);
  }
}

TEST(ANegation, IsNoValueWhereARunCannotTell) {
  EXPECT_FALSE(testing::Value(notDueRun(), WasSent()));
  EXPECT_TRUE(testing::Value(sentRun(), WasSent()));
  EXPECT_NONFATAL_FAILURE(EXPECT_FALSE(testing::Value(crashedRun(), WasSent())), "by signal 11");
  EXPECT_NONFATAL_FAILURE(EXPECT_FALSE(testing::Value(unsentRun(), HasNoHazards())), "of a run that cannot");
}

TEST(ANegation, IsOrdinaryOfOtherRuns) {
  EXPECT_EQ(verdictOf(notDueRun(), AllOf(EndedQuietly(), WasSent())), DIFFERS);
  EXPECT_EQ(verdictOf(sentRun(), AllOf(EndedQuietly(), WasSent())), MATCHES);
  EXPECT_EQ(verdictOf(notDueRun(), testing::Matcher<HostRun>(WasSent())), DIFFERS);
  EXPECT_EQ(verdictOf(notDueRun(), AllOf(Not(WasSent()), Not(EndedQuietly()))), DIFFERS);
  EXPECT_EQ(verdictOf(sentRun(), AllOf(Not(WasSent()), EndedQuietly())), DIFFERS);
  EXPECT_EQ(verdictOf(std::vector<HostRun>{notDueRun()}, Contains(WasSent())), DIFFERS);
  EXPECT_EQ(verdictOf(crashedRun(), testing::Field(&HostRun::signal, SIGTERM)), DIFFERS);
}

TEST(HasItem, TakesNumbersAsHostsWriteThem) {
  const auto wants = [](const std::string& text, const auto& value) {
    const auto run = with(sentRun(), [&](HostRun& each) { each.reports[0].items[0].value = text; });
    return testing::Matches(HasItem(Vestra::KELVO_USAGE, "runs", value))(run);
  };
  EXPECT_TRUE(wants("2", 2));
  EXPECT_TRUE(wants("2", 2UL));
  EXPECT_TRUE(wants("2", std::uint8_t{2}));
  EXPECT_TRUE(wants("-2", std::int8_t{-2}));
  EXPECT_TRUE(wants("x", 'x'));
  EXPECT_TRUE(wants("1", true));
  EXPECT_TRUE(wants("1.5", 1.5));
  EXPECT_TRUE(wants("0.1", 0.1));
  EXPECT_TRUE(wants("0.10000000000000001", 0.1));
  EXPECT_TRUE(wants("0.1", 0.1F));
  EXPECT_TRUE(wants("1234567.5", 1234567.5));
  EXPECT_TRUE(wants("0.33333333333333331", 1.0 / 3));
  EXPECT_TRUE(wants("1e+300", 1e300));
  EXPECT_FALSE(wants("1.23457e+06", 1234567.5));
  EXPECT_FALSE(wants("2", 3));
}

/// What the matcher says of a run that it does not match.
template <typename Matcher>
std::string explanation(const Matcher& matcher, const HostRun& run) {
  testing::StringMatchResultListener listener;
  testing::ExplainMatchResult(matcher, run, &listener);
  return listener.str();
}

TEST(AReason, StandsBeforeTheRun) {
  const auto toolFailed = with(sentRun(), [](HostRun& run) {
    run.reports.clear();
    run.toolRuns[0].status = 1 << 8;
    run.toolRuns[0].output = "read 3 items\nkelvo_vestra.tcl:4: extra characters\n";
  });
  const auto otherProduct = with(notDueRun(), [](HostRun& run) { run.sends[0].product = Vestra::KELVO_ALT; });
  const auto withoutLibrary = with(unsentRun(), [](HostRun& run) { run.rulesFile = "rules"; });
  const auto gone = with(unsentRun(), [](HostRun& run) {
    run.directory = "/nowhere/sandbox";
    run.identityFile = "/nowhere/sandbox/project/vestra/.kelvo_vestrra.info";
  });
  const auto silent = with(unsentRun(), [](HostRun& run) { run.sends.clear(); });
  const auto left = with(unsentRun(), [](HostRun& run) {
    run.answer.reset();
    run.sends[0].answer.reset();
    run.exitStatus = 3;
  });
  const auto threwInSend = with(left, [](HostRun& run) { run.sends[0].exception = Exception{"E", "t", {}}; });
  const auto leftAfterSend = with(sentRun(), [](HostRun& run) { run.exitStatus = 3; });
  const auto late = with(crashedRun(), [](HostRun& run) { run.timedOut = true; });
  const auto unsound = with(sentRun(), [](HostRun& run) { run.unsoundness = {"it ran env -i"}; });
  const auto hazardous = with(sentRun(), [](HostRun& run) { run.writtenItems[0].value = "C:\\temp"; });

  struct Case {
    RunMatcher matcher;
    HostRun run;
    const char* reason;
  };
  const std::vector<Case> cases{
      {WasSent(), notDueRun(),
       "which was not due until 2020-09-14 12:26:41 UTC: /project/vestra/.kelvo_vestrra.info says that the "
       "last "
       "report went at 2020-09-13 12:26:40 UTC"},
      {WasSent(), otherProduct,
       "which was not due until 2023-11-15 22:13:21 UTC: /project/vestra/.kelvo_vestrra.info says that the "
       "last "
       "report went at 2023-11-14 22:13:20 UTC"},
      {WasSent(), withoutLibrary, "which found no support library, libqvzcommonvestrasupport.so"},
      {WasSent(), unsentRun(), "which could not use the identity file /project/vestra/.kelvo_vestrra.info"},
      {WasSent(), gone, "which could not use the identity file SANDBOX/project/vestra/.kelvo_vestrra.info"},
      {WasSent(), toolFailed,
       "whose design tool ended with status 1 and made no report: kelvo_vestra.tcl:4: extra characters"},
      {WasSent(), silent, "whose host answered false and called no send"},
      {WasSent(), left, "whose host ended with status 3 before send returned"},
      {WasSent(), threwInSend, "whose send threw E \"t\""},
      {WasSent(), crashedRun(), "whose host was ended by signal 11 (Segmentation fault)"},
      {WasSent(), crashedAfterSend(),
       "which sent a report, but whose host was ended by signal 11 (Segmentation fault)"},
      {WasSent(), throwingRun(), "whose host threw std::out_of_range \"too far\""},
      {WasSent(), late, "whose time was up"},
      {WasSent(), unsound, "which proves nothing, as it ran env -i"},
      {HasItem(Vestra::KELVO_USAGE, "runs", "3"), sentRun(), "whose \"runs\" in kelvo\\usage is \"2\""},
      {HasItem(Vestra::KELVO_USAGE, "rums", "2"), sentRun(),
       "which has no key \"rums\" in kelvo\\usage, only \"runs\""},
      {HasItem(Vestra::TAVLO_USAGE, "runs", "2"), sentRun(),
       "which has no key \"runs\" in tavlo\\usage; kelvo\\usage has it: \"2\""},
      {HasItem(Vestra::TAVLO_USAGE, "runs", "2"), silent,
       "which has no script to look into, whose host answered false and called no send"},
      {ItemsAre(Vestra::KELVO_USAGE, IsEmpty()), sentRun(),
       "whose items in kelvo\\usage are { (\"runs\", \"2\") }, whose size is 1"},
      {SendsAre(IsEmpty()), sentRun(),
       "whose sends are { send(\"/project\", KELVO): true }, whose size is 1"},
      {HasNoHazards(), hazardous,
       "with hazards:\n  kelvo\\usage: runs = \"C:\\temp\": the value holds a backslash, which changes what "
       "follows it"},
      {Threw<std::logic_error>(), sentRun(), "whose host answered true"},
      {EndedQuietly(), runThatWrote("a.c:1:2: runtime error: x\n"),
       "whose host answered true, in which a sanitizer found a.c:1:2: runtime error: x, and which printed"},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(explanation(each.matcher, each.run), StartsWith(std::string(each.reason) + "\na run whose "));
  }
  EXPECT_THAT(explanation(Not(WasSent()), leftAfterSend),
              StartsWith("which sent 1 report(s), and whose host ended with status 3\na run "));
}

TEST(ADescription, SaysWhatIsWanted) {
  const auto described = [](const testing::Matcher<HostRun>& matcher) {
    return testing::DescribeMatcher<const HostRun&>(matcher);
  };
  EXPECT_EQ(described(HasItem(Vestra::KELVO_USAGE, "runs", 3)),
            "has an item \"runs\" in kelvo\\usage whose value is equal to \"3\"");
  EXPECT_EQ(described(Not(HasItem(Vestra::KELVO_USAGE, "runs", 3))),
            "has no item \"runs\" in kelvo\\usage whose value is equal to \"3\"");
  EXPECT_EQ(described(ItemsAre(Vestra::TAVLO_USAGE, IsEmpty())),
            "has items in tavlo\\usage, a list that is empty");
  EXPECT_EQ(described(SendsAre(ElementsAre(Send{"/p", Vestra::TAVLO, true}))),
            "has sends, a list that has 1 element that is equal to send(\"/p\", TAVLO): true");
  EXPECT_EQ(described(Not(AllOf(WasSent(), EndedQuietly()))), "(was not sent) or (did not end quietly)");
}

std::string accountOf(const HostRun& run) {
  std::ostringstream out;
  out << run;
  return out.str();
}

TEST(AnAccount, ShowsAllThatThereIsTheWorstFirst) {
  HostRun run = sentRun();
  run.output = "hello\n";
  run.errorOutput = "==9==ERROR: LeakSanitizer: leaks\n";
  run.hostCommands = {{"ls", 1 << 8}};
  run.identity = Identity{"5\n0\n2\n0\np\n", 5, 0, 2, false, "p"};
  run.settings = Settings{"RandomID=r\n", "r"};
  run.failedAssertions = {{"host.cpp", 7, "Failed"}};
  run.unsoundness = {"it ran env -i"};
  run.outlivingProcesses = {"sleep 600"};
  run.added = {{Vestra::KELVO_USAGE, "runs", "2"}};
  EXPECT_EQ(accountOf(run),
            "a run whose host answered true\n"
            "it proves nothing:\n"
            "  it ran env -i\n"
            "sanitizers' findings:\n"
            "  ==9==ERROR: LeakSanitizer: leaks\n"
            "failed assertions:\n"
            "  host.cpp:7: Failed\n"
            "processes that outlived the host:\n"
            "  sleep 600\n"
            "sends:\n"
            "  send(\"/project\", KELVO): true\n"
            "started:\n"
            "  tool -mode batch, status 0\n"
            "      done\n"
            "the host wrote on standard error:\n"
            "  ==9==ERROR: LeakSanitizer: leaks\n"
            "the host wrote:\n"
            "  hello\n"
            "the host's own commands:\n"
            "  ls, status 1\n"
            "added:\n"
            "  kelvo\\usage: runs = \"2\"\n"
            "report 17 of REG:\n"
            "  kelvo\\usage: runs = \"2\"\n"
            "script:\n"
            "  vestra_terminate\n"
            "identity:\n"
            "  5\n  0\n  2\n  0\n  p\n"
            "settings:\n"
            "  RandomID=r\n");
}

TEST(AnAccount, ShowsWhatWasWrittenWhereThereIsNoReport) {
  HostRun run = crashedRun();
  run.writtenItems = {Item{"kelvo", "kelvo\\usage", "k\x01", "v"}};
  EXPECT_EQ(accountOf(run),
            "a run whose host was ended by signal 11 (Segmentation fault)\n"
            "started:\n"
            "  no design tool\n"
            "items as they were written:\n"
            "  kelvo\\usage: k\\x01 = \"v\"\n");
}

TEST(AFailuresAccount, HasAtMost25LinesTheCauseFirst) {
  HostRun run = runThatWrote("==9==ERROR: LeakSanitizer: leaks\n", 1);
  for (int i = 0; i < 100; ++i) {
    const std::string number = std::to_string(i);
    run.errorOutput += "line " + number + "\n";
    run.output += std::string(1000, 'x') + "\n";
    run.toolRuns[0].output += "item " + number + "\n";
    run.sends.push_back(run.sends[0]);
    run.added.push_back({Vestra::KELVO_USAGE, "k" + number, "v"});
    run.writtenItems.push_back({"kelvo", "kelvo\\usage", "k" + number, "C:\\"});
    run.reports[0].warnings.push_back("warning " + number);
  }
  const auto failed = [&](const testing::Matcher<const HostRun&>& matcher) {
    return std::string(testing::internal::MakePredicateFormatterFromMatcher(matcher)("run", run).message());
  };
  for (const testing::Matcher<const HostRun&>& matcher : std::vector<testing::Matcher<const HostRun&>>{
           Not(WasSent()), HasNoHazards(), HasNoWarnings(), EndedQuietly(),
           Not(AllOf(WasSent(), Not(EndedQuietly())))}) {
    const std::string text = failed(matcher);
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 24) << text;
    EXPECT_LE(text.size(), 6000U) << text;
    EXPECT_LT(text.find("sanitizers' findings:\n"), text.find("sends:\n")) << text;
    EXPECT_THAT(text, HasSubstr("and 98 more: print the run to see all\n"));
  }
}

TEST(EachPartOfARun, PrintsItselfReadably) {
  EXPECT_EQ(testing::PrintToString(sentRun()), "a run whose host answered true");
  EXPECT_EQ(testing::PrintToString(AddedItem{Vestra::KELVO_USAGE, "k", "v"}), "kelvo\\usage: k = \"v\"");
  EXPECT_EQ(testing::PrintToString(AddedItem{static_cast<Vestra::SectionType>(7), "k", "v"}),
            "section 7: k = \"v\"");
  EXPECT_EQ(testing::PrintToString(Send{"/p", Vestra::KELVO_ALT, std::nullopt}),
            "send(\"/p\", KELVO_ALT): no answer");
  EXPECT_EQ(testing::PrintToString(Send{"/p", static_cast<Vestra::ProductType>(7), true}),
            "send(\"/p\", 7): true");
  EXPECT_EQ(testing::PrintToString(Send{"/p", Vestra::TAVLO, std::nullopt, Exception{"E", "t", {}}}),
            "send(\"/p\", TAVLO): E \"t\"");
  EXPECT_EQ(testing::PrintToString(HostCommand{"ls", std::nullopt}), "ls, not ended");
  EXPECT_EQ(testing::PrintToString(HostCommand{"ls", SIGKILL}), "ls, signal 9");
  EXPECT_EQ(testing::PrintToString(Hazard{RUNS, "a reason"}), "kelvo\\usage: runs = \"2\": a reason");
}

}  // namespace
