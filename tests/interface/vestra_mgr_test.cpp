#include "interface/vestra_mgr.h"

#include <gtest/gtest.h>

#include <string>

#include "support/files.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

TEST(Manager, ManagerMakesSettingsThatHaveReadTheirFileAndAFreshHandler) {
  const vestra_test::TemporaryDirectory home;
  const vestra_test::ScopedEnv homeVariable("HOME", home.path());
  vestra_test::writeFile(home / ".Calvix/Common/2018.2/vestra", "RandomID=abc\n");
  const VestraMgr manager;
  EXPECT_EQ(manager.getSetting()->getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(manager.getHandler()->getLogFileName(), "/vestra/tavlo_vestra.log");
  EXPECT_EQ(manager.getHandler()->getProductType(), Vestra::KELVO);
  EXPECT_TRUE(manager.getHandler()->isParentEmpty(0));
}

TEST(Manager, ManagerGivesTheSameObjectsEachTime) {
  const VestraMgr manager;
  EXPECT_EQ(manager.getSetting(), manager.getSetting());
  EXPECT_EQ(manager.getHandler(), manager.getHandler());
}

TEST(Manager, ProcessHasOneManager) {
  EXPECT_EQ(VestraMgr::getInstance(), VestraMgr::getInstance());
  EXPECT_NE(VestraMgr::getInstance()->getSetting(), nullptr);
  EXPECT_NE(VestraMgr::getInstance()->getHandler(), nullptr);
}

}  // namespace
}  // namespace Oza
