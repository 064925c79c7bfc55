#include <vestra/vestra.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <boost/filesystem/exception.hpp>

#include "interface/vestra_mgr.h"
#include "support/child_process.h"
#include "support/error_of.h"
#include "support/files.h"
#include "support/scoped_current_directory.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

using vestra_test::errorOf;
using vestra_test::inChildProcess;
using vestra_test::namesIn;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;
using vestra_test::writeFile;

constexpr Vestra::SectionType PROJECT = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

/// What the entry points do in a process that has not used them yet. Each
/// observation is made in a process of its own.
class FirstUse : public testing::Test {
 protected:
  FirstUse() { keepInSettings("before"); }

  void keepInSettings(const std::string& randomId) const {
    writeFile(home / ".Calvix/Common/2018.2/vestra", "RandomID=" + randomId + "\n");
  }

  /// Whether a call made the manager, which reads the settings only when it is made.
  template <typename Call>
  std::string managerAfter(Call call) const {
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

const std::string NULL_TEXT = "basic_string::_M_construct null not valid";

TEST_F(FirstUse, FirstUseByAnItemMakesTheManager) {
  EXPECT_EQ(managerAfter([] { Vestra::add("k", "v", PROJECT); }), "manager");
}

TEST_F(FirstUse, FirstUseByTheSiteMakesTheManager) {
  EXPECT_EQ(managerAfter([] { Vestra::internal(); }), "manager");
}

TEST_F(FirstUse, FirstUseByTheLogFileNameMakesTheManager) {
  EXPECT_EQ(managerAfter([] { Vestra::getLogFileName(); }), "manager");
}

TEST_F(FirstUse, FirstUseBySendingMakesTheManager) {
  EXPECT_EQ(managerAfter([&] { Vestra::send(project.path().c_str(), Vestra::KELVO); }), "manager");
}

TEST_F(FirstUse, FirstUseWithANullValueThrowsAndMakesNoManager) {
  EXPECT_EQ(inChildProcess([] { return errorOf([] { Vestra::add("k", nullptr, PROJECT); }); }), NULL_TEXT);
  EXPECT_EQ(managerAfter([] { errorOf([] { Vestra::add("k", nullptr, PROJECT); }); }), "no manager");
}

TEST_F(FirstUse, FirstUseWithANullKeyThrowsAndMakesNoManager) {
  EXPECT_EQ(inChildProcess([] { return errorOf([] { Vestra::add(nullptr, "v", PROJECT); }); }), NULL_TEXT);
  EXPECT_EQ(managerAfter([] { errorOf([] { Vestra::add(nullptr, "v", PROJECT); }); }), "no manager");
}

TEST_F(FirstUse, FirstUseWithANullKeyAndValueThrowsAndMakesNoManager) {
  EXPECT_EQ(inChildProcess([] { return errorOf([] { Vestra::add(nullptr, nullptr, PROJECT); }); }),
            NULL_TEXT);
  EXPECT_EQ(managerAfter([] { errorOf([] { Vestra::add(nullptr, nullptr, PROJECT); }); }), "no manager");
}

TEST_F(FirstUse, FirstUseWithANullProjectDirectoryThrowsAndMakesNoManager) {
  EXPECT_EQ(inChildProcess([] { return errorOf([] { Vestra::send(nullptr, Vestra::KELVO); }); }), NULL_TEXT);
  EXPECT_EQ(managerAfter([] { errorOf([] { Vestra::send(nullptr, Vestra::KELVO); }); }), "no manager");
}

TEST_F(FirstUse, FirstUseBySendingFromADirectoryThatIsGoneLeavesTheProductAsItWas) {
  EXPECT_EQ(inChildProcess([&] {
              const vestra_test::ScopedCurrentDirectory there(project.path());
              rmdir(project.path().c_str());
              EXPECT_THROW(Vestra::send("relative", Vestra::TAVLO), boost::filesystem::filesystem_error);
              return VestraMgr::getInstance()->getHandler()->getProductName();
            }),
            "KELVO");
}

TEST_F(FirstUse, NullKeyOrValueLeavesAllContextsAsTheyWere) {
  EXPECT_EQ(inChildProcess([] {
              VestraHandler* handler = VestraMgr::getInstance()->getHandler();
              std::string emptyContexts;
              errorOf([] { Vestra::add("k", nullptr, Vestra::KELVO_USAGE); });
              errorOf([] { Vestra::add(nullptr, "v", Vestra::KELVO_USAGE); });
              for (unsigned int i = 0; i < 6; ++i) {
                emptyContexts += handler->isParentEmpty(i) ? "empty " : "filled ";
              }
              return emptyContexts;
            }),
            "empty empty empty empty empty empty ");
}

TEST_F(FirstUse, ItemIsFiledUnderItsSection) {
  EXPECT_EQ(inChildProcess([] {
              Vestra::add("k", "v", Vestra::KELVO_USAGE);
              std::string contexts;
              for (unsigned int i = 0; i < 6; ++i) {
                contexts += VestraMgr::getInstance()->getHandler()->isParentEmpty(i) ? "empty " : "filled ";
              }
              return contexts;
            }),
            "empty empty empty filled empty empty ");
}

TEST_F(FirstUse, ItemsStringsAreCopied) {
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

TEST_F(FirstUse, LogFileNameBeforeAnySendingHasNoProjectDirectory) {
  EXPECT_EQ(inChildProcess([] { return Vestra::getLogFileName(); }), "/vestra/tavlo_vestra.log");
}

TEST_F(FirstUse, LogFileNameIsThatOfTheLastSending) {
  EXPECT_EQ(inChildProcess([&] {
              Vestra::send((project / "first").c_str(), Vestra::TAVLO);
              Vestra::send((project / "second").c_str(), Vestra::KELVO);
              return Vestra::getLogFileName();
            }),
            project / "second/vestra/tavlo_vestra.log");
}

TEST_F(FirstUse, SiteIsThatOfTheHandler) {
  EXPECT_EQ(inChildProcess([] {
              return Vestra::internal() == VestraMgr::getInstance()->getHandler()->isInternal() ? "the same"
                                                                                                : "different";
            }),
            "the same");
}

TEST_F(FirstUse, SendingWithoutASupportLibraryGivesFalseAndLeavesTheRulesFile) {
  EXPECT_EQ(inChildProcess(
                [&] { return Vestra::send(project.path().c_str(), Vestra::KELVO) ? "sent" : "not sent"; }),
            "not sent");
  EXPECT_EQ(namesIn(project / "vestra"),
            (std::vector<std::string>{".kelvo_vestrra.info", "usage_statistics_ext_kelvo.wdm"}));
}

TEST_F(FirstUse, SendingForProductSevenIsSendingForTheLabTool) {
  inChildProcess([&] {
    Vestra::send(project.path().c_str(), static_cast<Vestra::ProductType>(7));
    return "";
  });
  EXPECT_EQ(namesIn(project / "vestra"),
            (std::vector<std::string>{".kelvo_vestrra.info", "usage_statistics_ext_tavlo.wdm"}));
}

TEST_F(FirstUse, SendingResolvesARelativeProjectDirectory) {
  EXPECT_EQ(inChildProcess([&]() -> std::string {
              if (chdir(project.path().c_str()) != 0) {
                return "cannot go there";
              }
              Vestra::send("relative", Vestra::KELVO);
              return Vestra::getLogFileName();
            }),
            project / "relative/vestra/tavlo_vestra.log");
}

TEST_F(FirstUse, SendingMakesARandomIdEvenWhenThePreparationFails) {
  const TemporaryDirectory newHome;
  const ScopedEnv newHomeVariable("HOME", newHome.path());
  writeFile(project / "vestra", "");
  EXPECT_EQ(inChildProcess(
                [&] { return Vestra::send(project.path().c_str(), Vestra::KELVO) ? "sent" : "not sent"; }),
            "not sent");
  EXPECT_EQ(vestra_test::readFile(newHome / ".Calvix/Common/2018.2/vestra").substr(0, 9), "RandomID=");
}

}  // namespace
}  // namespace Oza
