#include <vestra/vestra.h>

#include <unistd.h>

#include <boost/filesystem/exception.hpp>

#include "interface/vestra_mgr.h"
#include "support/test.h"

namespace Oza {
namespace {

constexpr Vestra::SectionType PROJECT = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

/// What the entry points do in a process that has not used them yet. Each
/// observation is made in a process of its own.
class FirstUse : public Test {
 protected:
  FirstUse() { keepInSettings("before"); }

  void keepInSettings(const std::string& randomId) const {
    writeFile(home / ".Calvix/Common/2018.2/vestra", "RandomID=" + randomId + "\n");
  }

  /// Whether a call made the manager, which reads the settings only when it is made.
  std::string managerAfter(const std::function<void()>& call) const {
    return inChildProcess([&] {
      call();
      keepInSettings("after");
      const bool existed = VestraMgr::getInstance()->getSetting()->getRandomId() == "before";
      return existed ? "manager" : "no manager";
    });
  }

  TemporaryDirectory home;
  TemporaryDirectory project;
  ScopedEnv homeVariable{"HOME", home.path()};
};

using Call = std::function<void()>;

TEST_F(FirstUse, OfAnyEntryPointMakesTheManager) {
  const std::pair<const char*, Call> rows[] = {
      {"add", [] { Vestra::add("k", "v", PROJECT); }},
      {"internal", [] { Vestra::internal(); }},
      {"getLogFileName", [] { Vestra::getLogFileName(); }},
      {"send", [&] { Vestra::send(project.path().c_str(), Vestra::KELVO); }}};
  for (const auto& [name, call] : rows) {
    keepInSettings("before");
    EXPECT_EQ(managerAfter(call), "manager") << name;
  }
}

TEST_F(FirstUse, WithNullThrowsTheTextThatHostsKnowAndMakesNoManager) {
  const std::pair<const char*, Call> rows[] = {
      {"value", [] { Vestra::add("k", nullptr, PROJECT); }},
      {"key", [] { Vestra::add(nullptr, "v", PROJECT); }},
      {"key and value", [] { Vestra::add(nullptr, nullptr, PROJECT); }},
      {"project directory", [] { Vestra::send(nullptr, Vestra::KELVO); }}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.first);
    keepInSettings("before");
    EXPECT_EQ(inChildProcess([&] { return errorOf(row.second); }),
              "basic_string::_M_construct null not valid");
    EXPECT_EQ(managerAfter([&] { errorOf(row.second); }), "no manager");
  }
}

TEST_F(FirstUse, FilesAnItemUnderItsSectionUnlessItIsNull) {
  EXPECT_EQ(inChildProcess([] {
              std::string contexts;
              errorOf([] { Vestra::add("k", nullptr, PROJECT); });
              errorOf([] { Vestra::add(nullptr, "v", PROJECT); });
              Vestra::add("k", "v", Vestra::KELVO_USAGE);
              for (unsigned int i = 0; i < 6; ++i) {
                contexts += VestraMgr::getInstance()->getHandler()->isParentEmpty(i) ? "empty " : "filled ";
              }
              return contexts;
            }),
            "empty empty empty filled empty empty ");
}

TEST_F(FirstUse, CopiesTheItemsStrings) {
  EXPECT_EQ(inChildProcess([] {
              std::string key = "project_id";
              std::string value = "value";
              Vestra::add(key.c_str(), value.c_str(), PROJECT);
              key.assign("overwritten");
              value.assign("other");
              return VestraMgr::getInstance()->getHandler()->getOrbeloProjectId();
            }),
            "value");
}

TEST_F(FirstUse, FromADirectoryThatIsGoneLeavesTheProductAsItWas) {
  EXPECT_EQ(inChildProcess([&] {
              const ScopedCurrentDirectory there(project.path());
              rmdir(project.path().c_str());
              EXPECT_THROW(Vestra::send("relative", Vestra::TAVLO), boost::filesystem::filesystem_error);
              return VestraMgr::getInstance()->getHandler()->getProductName();
            }),
            "KELVO");
}

TEST_F(FirstUse, HasALogFileNameThatFollowsTheProjectDirectory) {
  EXPECT_EQ(inChildProcess([&] {
              std::string names = Vestra::getLogFileName();
              Vestra::send((project / "first").c_str(), Vestra::TAVLO);
              const ScopedCurrentDirectory there(project.path());
              Vestra::send("relative", Vestra::KELVO);
              return names + " " + Vestra::getLogFileName();
            }),
            "/vestra/tavlo_vestra.log " + project / "relative/vestra/tavlo_vestra.log");
}

TEST_F(FirstUse, TellsTheHandlersSite) {
  EXPECT_EQ(inChildProcess([] {
              return Vestra::internal() == VestraMgr::getInstance()->getHandler()->isInternal() ? "the same"
                                                                                                : "different";
            }),
            "the same");
}

TEST_F(FirstUse, WithoutASupportLibrarySendsNothingAndLeavesTheRulesFile) {
  EXPECT_EQ(inChildProcess([&] {
              const auto productSeven = static_cast<Vestra::ProductType>(7);
              return Vestra::send(project.path().c_str(), productSeven) ? "sent" : "not sent";
            }),
            "not sent");
  EXPECT_THAT(namesIn(project / "vestra"),
              ElementsAre(".kelvo_vestrra.info", "usage_statistics_ext_tavlo.wdm"));
}

TEST_F(FirstUse, MakesARandomIdEvenWhenThePreparationFails) {
  const TemporaryDirectory newHome;
  const ScopedEnv newHomeVariable("HOME", newHome.path());
  writeFile(project / "vestra", "");
  EXPECT_EQ(inChildProcess(
                [&] { return Vestra::send(project.path().c_str(), Vestra::KELVO) ? "sent" : "not sent"; }),
            "not sent");
  EXPECT_THAT(readFile(newHome / ".Calvix/Common/2018.2/vestra"), StartsWith("RandomID="));
}

}  // namespace
}  // namespace Oza
