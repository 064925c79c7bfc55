// Which items the design tool would not read as they were written: judged by what it
// really reads.

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>
#include <boost/filesystem/operations.hpp>

namespace {

using Oza::Vestra;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace vestra::testkit;

HostRun runWith(const std::vector<std::pair<std::string, std::string>>& items) {
  Sandbox sandbox;
  return sandbox.run(Vestra::KELVO, [&] {
    for (const auto& [key, value] : items) {
      Vestra::add(key.c_str(), value.c_str(), Vestra::KELVO_USAGE);
    }
  });
}

std::vector<Item> usageIn(const std::vector<Item>& items) {
  std::vector<Item> usage;
  for (const Item& item : items) {
    if (item.context == "kelvo\\usage") {
      usage.push_back(item);
    }
  }
  return usage;
}

std::string reasonsIn(const HostRun& run) {
  std::string reasons;
  for (const Hazard& hazard : run.hazards()) {
    reasons += hazard.item.key + " = " + hazard.item.value + ": " + hazard.reason + "\n";
  }
  return reasons;
}

TEST(Hazards, IncludeFactsThatTheReportLeavesOut) {
  Sandbox sandbox;
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    for (const auto& [key, value] :
         std::vector<std::pair<const char*, const char*>>{{"BUILD_VERSION", "1"},
                                                          {"Build_Version", "2"},
                                                          {"traget_device", "x"},
                                                          {"Target_Device", "y"}}) {
      Vestra::add(key, value, Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    }
    Vestra::add("ITEMS", "3", Vestra::KELVO_USAGE);
  });
  EXPECT_EQ(reasonsIn(run),
            "BUILD_VERSION = 1: the key holds a capital I, which Turkish and Azeri locales do not make an i\n"
            "Build_Version = 2: the report has \"1\" for this key instead\n"
            "traget_device = x: the report leaves out the key, which is none of the project's facts\n");
}

TEST(Hazards, IncludeItemsThatNoSendFollows) {
  Sandbox sandbox;
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("first", "1", Vestra::KELVO_USAGE);
    Vestra::send(sandbox.project().c_str(), Vestra::KELVO);
    Vestra::add("between", "2", Vestra::KELVO_USAGE);
    Vestra::send(sandbox.project().c_str(), Vestra::KELVO_ALT);
    Vestra::add("first", "1", Vestra::KELVO_USAGE);
    return true;
  });
  EXPECT_EQ(reasonsIn(run), "first = 1: the report leaves out the item, which no send follows\n");
}

TEST(Hazards, IncludeProjectDirectoriesThatTheShellOrTheInterpreterReads) {
  for (const char* name :
       {"a b", "a\tb", "$HOME", "a;b", "a&b", "it's", "a[b", "a{b,c}", "a*", "a\\b", "a\nb"}) {
    Sandbox sandbox;
    const std::string directory = sandbox.project() + "/" + name;
    boost::filesystem::create_directory(directory);
    const HostRun run = sandbox.runProcess([&] { return Vestra::send(directory.c_str(), Vestra::KELVO); });
    EXPECT_THAT(reasonsIn(run), testing::StartsWith("project directory = " + directory + ": it holds \""))
        << run;
  }
}

TEST(Hazards, DoNotIncludeWhatTclReadsAsItStands) {
  const HostRun run = runWith(
      {{"k]", "]"}, {"a\"b", "{ }"}, {"#", "# ; { $ 1$"}, {"-value", "-key"}, {"line", "feed\nfeed"}});
  EXPECT_THAT(run, HasNoHazards());
  ASSERT_THAT(run.reports, SizeIs(1)) << run;
  EXPECT_EQ(run.report()->items, run.writtenItems);
}

TEST(Hazards, StandBehindOneAnother) {
  const HostRun run = runWith({{"good", "1"}, {"bad", "a\"b"}, {"fine", "2"}, {"worse", "x\" -context \"y"}});
  EXPECT_EQ(reasonsIn(run),
            "bad = a\"b: the value holds a double quote, which ends it\n"
            "worse = x\" -context \"y: the value holds a double quote, which ends it\n");
  EXPECT_THAT(run.reports, IsEmpty());
}

// A value that closes its quote and adds an item of its own.
const std::string INJECTED_LINE =
    "1\" -context \"kelvo\\\\usage\"\nvestra_add_data -client kelvo -key stolen -value \"2";
const std::string INJECTED_COMMAND =
    "1\" -context \"kelvo\\\\usage\"; vestra_add_data -client kelvo -key stolen -value \"2";

TEST(Hazards, IncludeAValueThatAddsAnItemOfItsOwn) {
  for (const std::string& value : {INJECTED_LINE, INJECTED_COMMAND}) {
    const HostRun run = runWith({{"runs", value}, {"good", "1"}});
    ASSERT_THAT(run.reports, SizeIs(1)) << run;
    EXPECT_THAT(run.values(Vestra::KELVO_USAGE, "stolen"), ElementsAre("2"));
    EXPECT_THAT(run.report()->warnings, SizeIs(1)) << "the tool does not warn";
    const auto hazards = run.hazards();
    ASSERT_THAT(hazards, SizeIs(1)) << run;
    EXPECT_EQ(hazards[0].item.key, "runs");
    EXPECT_EQ(hazards[0].item.value, value);
    EXPECT_THAT(hazards[0].reason, testing::StartsWith("the value holds a double quote, which ends it"));
  }
}

TEST(Hazards, IncludeAKeyThatAddsAnItemOfItsOwn) {
  const std::string key =
      "k -value \"1\" -context \"kelvo\\\\usage\"\nvestra_add_data -client kelvo -key stolen";
  const HostRun run = runWith({{key, "2"}});
  const auto hazards = run.hazards();
  ASSERT_THAT(hazards, SizeIs(1)) << run;
  EXPECT_EQ(hazards[0].item.key, key);
}

std::string bytesFrom(const std::string& wanted, const std::string& unwanted) {
  const auto bytes = *rc::gen::container<std::vector<char>>(
      rc::gen::suchThat(rc::gen::oneOf(rc::gen::arbitrary<char>(), rc::gen::elementOf(wanted)),
                        [&](char byte) { return byte != '\0' && unwanted.find(byte) == std::string::npos; }));
  return {bytes.begin(), bytes.end()};
}

RC_GTEST_PROP(Hazards, AbsentMeansThatTheToolReportsWhatWasAdded, ()) {
  std::vector<std::pair<std::string, std::string>> added;
  const int count = *rc::gen::inRange(0, 20);
  for (int i = 0; i < count; ++i) {
    added.emplace_back("k" + bytesFrom("ab_-.", " \t\n\v\f\r;[$\\"), bytesFrom("ab {}\n;#", "\"[$\\"));
  }
  const HostRun run = runWith(added);
  RC_ASSERT(run.hazards().empty());
  RC_ASSERT(run.reports.size() == 1U);
  const std::vector<Item> reported = usageIn(run.report()->items);
  RC_ASSERT(reported.size() == added.size());
  for (std::size_t i = 0; i < added.size(); ++i) {
    RC_ASSERT(reported[i].key == added[i].first);
    RC_ASSERT(reported[i].value == added[i].second);
  }
}

RC_GTEST_PROP(Hazards, NameEachItemThatTheToolReadsDifferentlyAndOnlyThose, ()) {
  const std::string risky = "\"[]{}$\\; \n\tab1(:";
  const std::string key = bytesFrom(risky, "");
  const std::string value = bytesFrom(risky, "");
  const HostRun run = runWith({{key, value}});
  const std::vector<Item> written{{"kelvo", "kelvo\\usage", key, value}};
  const bool readAsWritten = run.report() != nullptr && usageIn(run.report()->items) == written;
  RC_ASSERT(run.hazards().empty() == readAsWritten);
}

}  // namespace
