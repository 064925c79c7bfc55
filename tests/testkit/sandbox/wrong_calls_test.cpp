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
using namespace vestra::testkit;

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

using Change = std::function<void(Host&, const Sandbox&)>;

/// The names of what the run does not match.
std::vector<std::string> unmatchedBy(const Change& change) {
  Sandbox sandbox;
  Host host{sandbox.project()};
  change(host, sandbox);
  sandbox.setTimeLimit(std::chrono::seconds(10));
  const HostRun run = sandbox.runProcess([&] { return host(); });
  std::vector<std::string> names;
  for (const Said& said : allThatIsSaidOf(sandbox)) {
    if (!testing::Matches(said.matcher)(run)) {
      names.emplace_back(said.name);
    }
  }
  return names;
}

TEST(ARightCall, IsMatchedByEverything) {
  EXPECT_THAT(unmatchedBy([](Host&, const Sandbox&) {}), IsEmpty());
}

Change sendTwice(Vestra::ProductType second) {
  return [=](Host& host, const Sandbox&) {
    host.end = [&host, second](bool) { return Vestra::send(host.project.c_str(), second); };
  };
}

/// @param directory  below that of the sandbox, or a relative one
Change sendTo(const std::string& directory) {
  return [=](Host& host, const Sandbox& sandbox) {
    const std::string path = directory[0] == '/' ? sandbox.directory() + directory : directory;
    host.send = [path] { return Vestra::send(path.c_str(), Vestra::KELVO); };
  };
}

Change sendAs(unsigned int product) {
  return [=](Host& host, const Sandbox&) {
    host.send = [&host, product] {
      return Vestra::send(host.project.c_str(), static_cast<Vestra::ProductType>(product));
    };
  };
}

Change addUsage(const std::vector<std::pair<const char*, const char*>>& items) {
  return [=](Host& host, const Sandbox&) {
    host.addUsage = [items] {
      for (const auto& [key, value] : items) {
        Vestra::add(key, value, USAGE);
      }
    };
  };
}

Change alsoAdd(const char* key, const char* value, Vestra::SectionType section) {
  return [=](Host& host, const Sandbox&) {
    host.addOptions = [=, before = host.addOptions] {
      before();
      Vestra::add(key, value, section);
    };
  };
}

Change insteadOfUsage(const std::function<void()>& action) {
  return [=](Host& host, const Sandbox&) { host.addUsage = action; };
}

Change atTheEnd(const std::function<void()>& action) {
  return [=](Host& host, const Sandbox&) {
    host.end = [action](bool sent) {
      action();
      return sent;
    };
  };
}

TEST(AWrongCall, IsNoticed) {
  struct Case {
    const char* name;
    const char* noticedBy;
    Change change;
  };
  using S = const Sandbox&;
  const char* const injected =
      "1.5\" -context \"kelvo\\\\usage\"\nvestra_add_data -client kelvo -key x -value \"1";
  const std::vector<Case> cases{
      // send
      {"the lab tool's", "SendsAre", sendAs(Vestra::TAVLO)},
      {"the other slot's", "SendsAre", sendAs(Vestra::KELVO_ALT)},
      {"an unknown product", "SendsAre", sendAs(3)},
      {"another directory", "SendsAre", sendTo("/home")},
      {"the directory above", "SendsAre", sendTo(".")},
      {"the vestra directory itself", "SendsAre", sendTo("/project/vestra")},
      {"a slash too many", "SendsAre", sendTo("/project/")},
      {"a directory with a blank", "HasNoHazards", sendTo("/project/a b")},
      {"no directory", "SendsAre", sendTo("")},
      {"null", "WasSent", [](Host& h, S) { h.send = [] { return Vestra::send(nullptr, Vestra::KELVO); }; }},
      {"twice", "SendsAre", sendTwice(Vestra::KELVO)},
      {"twice for two products", "SendsAre", sendTwice(Vestra::KELVO_ALT)},
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
      {"no items", "UsageIs", addUsage({})},
      {"an item too few", "UsageIs", addUsage({{"runs", "2"}})},
      {"an item twice", "UsageIs", addUsage({{"runs", "2"}, {"hours", "1.5"}, {"hours", "1.5"}})},
      {"an item too many", "UsageIs", addUsage({{"runs", "2"}, {"hours", "1.5"}, {"x", "1"}})},
      {"another order", "UsageIs", addUsage({{"hours", "1.5"}, {"runs", "2"}})},
      {"another key", "UsageIs", addUsage({{"rums", "2"}, {"hours", "1.5"}})},
      {"a key in capitals", "UsageIs", addUsage({{"Runs", "2"}, {"hours", "1.5"}})},
      {"a key with a blank", "HasNoHazards", addUsage({{"runs ", "2"}, {"hours", "1.5"}})},
      {"key and value exchanged", "UsageIs", addUsage({{"2", "runs"}, {"hours", "1.5"}})},
      {"another value", "UsageIs", addUsage({{"runs", "3"}, {"hours", "1.5"}})},
      {"an empty value", "UsageIs", addUsage({{"runs", ""}, {"hours", "1.5"}})},
      {"a value with a blank", "UsageIs", addUsage({{"runs", "2 "}, {"hours", "1.5"}})},
      {"a number as another locale writes it", "UsageIs", addUsage({{"runs", "2"}, {"hours", "1,5"}})},
      {"a value that the interpreter reads", "HasNoHazards", addUsage({{"runs", "$2"}, {"hours", "1.5"}})},
      {"a value that adds an item", "HasNoHazards", addUsage({{"runs", "2"}, {"hours", injected}})},
      {"null as a value", "WasSent", addUsage({{"runs", nullptr}})},
      {"another section", "OptionsAre",
       [](Host& h, S) { h.addOptions = [] { Vestra::add("mode", "batch", USAGE); }; }},
      {"the lab tool's section as well", "TavlosAre", alsoAdd("probes", "1", Vestra::TAVLO_USAGE)},
      {"the lab tool's options as well", "TavlosOptionsAre",
       alsoAdd("mode", "batch", Vestra::TAVLO_COMMAND_LINE_OPTIONS)},
      {"the user's environment as well", "EnvironmentIs", alsoAdd("shell", "sh", Vestra::USER_ENVIRONMENT)},
      {"a fact that is none", "HasNoHazards", alsoAdd("target_devise", "x8", FACTS)},
      {"a second fact of a kind", "HasNoHazards", alsoAdd("target_device", "x8", FACTS)},
      {"the fact too late", "HasItem",
       [](Host& h, S s) {
         atTheEnd(h.addFacts)(h, s);
         h.addFacts = [] {};
       }},
      {"an item after send", "HasNoHazards", atTheEnd([] { Vestra::add("late", "1", USAGE); })},
      // the host itself
      {"throws before send", "WasSent", insteadOfUsage([] { throw std::runtime_error("x"); })},
      {"throws after send", "WasSent", atTheEnd([] { throw std::runtime_error("x"); })},
      {"crashes before send", "WasSent", insteadOfUsage([] { raise(SIGSEGV); })},
      {"crashes after send", "WasSent", atTheEnd([] { raise(SIGSEGV); })},
      {"leaves before send", "WasSent", insteadOfUsage([] { std::exit(0); })},
      {"leaves with a status", "EndedQuietly", atTheEnd([] { std::exit(3); })},
      {"prints", "EndedQuietly", atTheEnd([] { std::cout << "sent" << std::endl; })},
      {"has a sanitizer's finding", "EndedQuietly",
       atTheEnd([] { std::cerr << "a.c:1:2: runtime error: overflow\n"; })},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(unmatchedBy(each.change), Contains(each.noticedBy)) << each.name;
  }
}

}  // namespace
