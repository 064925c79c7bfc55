// What hosts do wrong, and which matcher notices.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

namespace {

using Oza::Vestra;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HasItem;
using vestra::testkit::HasNoHazards;
using vestra::testkit::HasNoWarnings;
using vestra::testkit::HostRun;
using vestra::testkit::ItemsAre;
using vestra::testkit::RunMatcher;
using vestra::testkit::Sandbox;
using vestra::testkit::Send;
using vestra::testkit::SendsAre;
using vestra::testkit::WasSent;

constexpr auto FACTS = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;
constexpr auto OPTIONS = Vestra::KELVO_COMMAND_LINE_OPTIONS;
constexpr auto USAGE = Vestra::KELVO_USAGE;

/// What the host does, which each wrong one changes in one place.
struct Host {
  std::string project;
  std::function<void()> addFacts = [] { Vestra::add("target_device", "x7", FACTS); };
  std::function<void()> addOptions = [] { Vestra::add("mode", "batch", OPTIONS); };
  std::function<void()> addUsage = [] {
    Vestra::add("runs", "2", USAGE);
    Vestra::add("hours", "1.5", USAGE);
  };
  std::function<bool()> send = [this] { return Vestra::send(project.c_str(), Vestra::KELVO); };
  std::function<bool(bool)> end = [](bool sent) { return sent; };

  bool operator()() const {
    addFacts();
    addOptions();
    addUsage();
    return end(send());
  }
};

/// What is said of the right host, each by the matcher that says it.
struct Said {
  const char* name;
  RunMatcher matcher;
};

std::vector<Said> allThatIsSaidOf(const Sandbox& sandbox) {
  return {{"WasSent", WasSent()},
          {"SendsAre", SendsAre(ElementsAre(Send{sandbox.project(), Vestra::KELVO, true}))},
          {"HasItem", HasItem(FACTS, "target_device", "x7")},
          {"OptionsAre", ItemsAre(OPTIONS, ElementsAre(Pair("mode", "batch")))},
          {"UsageIs", ItemsAre(USAGE, ElementsAre(Pair("runs", "2"), Pair("hours", "1.5")))},
          {"EnvironmentIs", ItemsAre(Vestra::USER_ENVIRONMENT, testing::SizeIs(6))},
          {"TavlosAre", ItemsAre(Vestra::TAVLO_USAGE, IsEmpty())},
          {"TavlosOptionsAre", ItemsAre(Vestra::TAVLO_COMMAND_LINE_OPTIONS, IsEmpty())},
          {"HasNoHazards", HasNoHazards()},
          {"HasNoWarnings", HasNoWarnings()},
          {"EndedQuietly", EndedQuietly()}};
}

/// The names of what the run does not match.
std::vector<std::string> unmatchedBy(const std::function<void(Host&, const Sandbox&)>& change) {
  Sandbox sandbox;
  Host host{sandbox.project()};
  change(host, sandbox);
  sandbox.setTimeLimit(std::chrono::seconds(10));
  const HostRun run = sandbox.runProcess([&] { return host(); });
  std::vector<std::string> names;
  for (const Said& said : allThatIsSaidOf(sandbox)) {
    if (!testing::Value(run, said.matcher)) {
      names.emplace_back(said.name);
    }
  }
  return names;
}

TEST(ARightCall, IsMatchedByEverything) {
  EXPECT_THAT(unmatchedBy([](Host&, const Sandbox&) {}), IsEmpty());
}

void twice(Host& host, Vestra::ProductType second) {
  host.end = [&host, second](bool) { return Vestra::send(host.project.c_str(), second); };
}

void sendTo(Host& host, const std::string& directory) {
  host.send = [directory] { return Vestra::send(directory.c_str(), Vestra::KELVO); };
}

void sendAs(Host& host, Vestra::ProductType product) {
  host.send = [&host, product] { return Vestra::send(host.project.c_str(), product); };
}

void addUsage(Host& host, const std::vector<std::pair<const char*, const char*>>& items) {
  host.addUsage = [items] {
    for (const auto& [key, value] : items) {
      Vestra::add(key, value, USAGE);
    }
  };
}

void alsoAdd(Host& host, const char* key, const char* value, Vestra::SectionType section) {
  host.addOptions = [=, before = host.addOptions] {
    before();
    Vestra::add(key, value, section);
  };
}

void atTheEnd(Host& host, const std::function<void()>& action) {
  host.end = [action](bool sent) {
    action();
    return sent;
  };
}

TEST(AWrongCall, IsNoticed) {
  struct Case {
    const char* name;
    const char* noticedBy;
    std::function<void(Host&, const Sandbox&)> change;
  };
  using S = const Sandbox&;
  const std::vector<Case> cases{
      // send
      {"the lab tool's", "SendsAre", [](Host& h, S) { sendAs(h, Vestra::TAVLO); }},
      {"the other slot's", "SendsAre", [](Host& h, S) { sendAs(h, Vestra::KELVO_ALT); }},
      {"an unknown product", "SendsAre", [](Host& h, S) { sendAs(h, static_cast<Vestra::ProductType>(3)); }},
      {"another directory", "SendsAre", [](Host& h, S s) { sendTo(h, s.home()); }},
      {"the directory above", "SendsAre", [](Host& h, S) { sendTo(h, "."); }},
      {"the vestra directory itself", "SendsAre", [](Host& h, S s) { sendTo(h, s.project() + "/vestra"); }},
      {"a slash too many", "SendsAre", [](Host& h, S s) { sendTo(h, s.project() + "/"); }},
      {"a directory with a blank", "HasNoHazards", [](Host& h, S s) { sendTo(h, s.project() + "/a b"); }},
      {"no directory", "SendsAre", [](Host& h, S) { sendTo(h, ""); }},
      {"null", "WasSent", [](Host& h, S) { h.send = [] { return Vestra::send(nullptr, Vestra::KELVO); }; }},
      {"twice", "SendsAre", [](Host& h, S) { twice(h, Vestra::KELVO); }},
      {"twice for two products", "SendsAre", [](Host& h, S) { twice(h, Vestra::KELVO_ALT); }},
      {"never", "WasSent", [](Host& h, S) { h.send = [] { return true; }; }},
      {"before the items", "UsageIs",
       [](Host& h, S) {
         h.addFacts = [add = h.addFacts, send = h.send] {
           send();
           add();
         };
         h.send = [] { return true; };
       }},
      // items
      {"no items", "UsageIs", [](Host& h, S) { addUsage(h, {}); }},
      {"an item too few", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "2"}});
       }},
      {"an item twice", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "2"}, {"hours", "1.5"}, {"hours", "1.5"}});
       }},
      {"an item too many", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "2"}, {"hours", "1.5"}, {"x", "1"}});
       }},
      {"another order", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"hours", "1.5"}, {"runs", "2"}});
       }},
      {"another key", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"rums", "2"}, {"hours", "1.5"}});
       }},
      {"a key in capitals", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"Runs", "2"}, {"hours", "1.5"}});
       }},
      {"a key with a blank", "HasNoHazards",
       [](Host& h, S) {
         addUsage(h, {{"runs ", "2"}, {"hours", "1.5"}});
       }},
      {"key and value exchanged", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"2", "runs"}, {"hours", "1.5"}});
       }},
      {"another value", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "3"}, {"hours", "1.5"}});
       }},
      {"an empty value", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", ""}, {"hours", "1.5"}});
       }},
      {"a value with a blank", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "2 "}, {"hours", "1.5"}});
       }},
      {"a number as another locale writes it", "UsageIs",
       [](Host& h, S) {
         addUsage(h, {{"runs", "2"}, {"hours", "1,5"}});
       }},
      {"a value that the interpreter reads", "HasNoHazards",
       [](Host& h, S) {
         addUsage(h, {{"runs", "$2"}, {"hours", "1.5"}});
       }},
      {"a value that adds an item", "HasNoHazards",
       [](Host& h, S) {
         addUsage(h,
                  {{"runs", "2"},
                   {"hours",
                    "1.5\" -context \"kelvo\\\\usage\"\nvestra_add_data -client kelvo -key x -value \"1"}});
       }},
      {"null as a value", "WasSent",
       [](Host& h, S) {
         addUsage(h, {{"runs", nullptr}});
       }},
      {"another section", "OptionsAre",
       [](Host& h, S) { h.addOptions = [] { Vestra::add("mode", "batch", USAGE); }; }},
      {"the lab tool's section as well", "TavlosAre",
       [](Host& h, S) { alsoAdd(h, "probes", "1", Vestra::TAVLO_USAGE); }},
      {"the lab tool's options as well", "TavlosOptionsAre",
       [](Host& h, S) { alsoAdd(h, "mode", "batch", Vestra::TAVLO_COMMAND_LINE_OPTIONS); }},
      {"the user's environment as well", "EnvironmentIs",
       [](Host& h, S) { alsoAdd(h, "shell", "sh", Vestra::USER_ENVIRONMENT); }},
      {"a fact that is none", "HasNoHazards", [](Host& h, S) { alsoAdd(h, "target_devise", "x8", FACTS); }},
      {"a second fact of a kind", "HasNoHazards",
       [](Host& h, S) { alsoAdd(h, "target_device", "x8", FACTS); }},
      {"the fact too late", "HasItem",
       [](Host& h, S) {
         atTheEnd(h, h.addFacts);
         h.addFacts = [] {};
       }},
      {"an item after send", "HasNoHazards",
       [](Host& h, S) { atTheEnd(h, [] { Vestra::add("late", "1", USAGE); }); }},
      // the host itself
      {"throws before send", "WasSent",
       [](Host& h, S) { h.addUsage = [] { throw std::runtime_error("x"); }; }},
      {"throws after send", "WasSent",
       [](Host& h, S) { atTheEnd(h, [] { throw std::runtime_error("x"); }); }},
      {"crashes before send", "WasSent", [](Host& h, S) { h.addUsage = [] { raise(SIGSEGV); }; }},
      {"crashes after send", "WasSent", [](Host& h, S) { atTheEnd(h, [] { raise(SIGSEGV); }); }},
      {"leaves before send", "WasSent", [](Host& h, S) { h.addUsage = [] { std::exit(0); }; }},
      {"leaves with a status", "EndedQuietly", [](Host& h, S) { atTheEnd(h, [] { std::exit(3); }); }},
      {"prints", "EndedQuietly", [](Host& h, S) { atTheEnd(h, [] { std::cout << "sent" << std::endl; }); }},
      {"has a sanitizer's finding", "EndedQuietly",
       [](Host& h, S) { atTheEnd(h, [] { std::cerr << "a.c:1:2: runtime error: overflow\n"; }); }},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(unmatchedBy(each.change), Contains(each.noticedBy)) << each.name;
  }
}

}  // namespace
