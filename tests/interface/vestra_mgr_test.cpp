#include "interface/vestra_mgr.h"

#include "support/test.h"

namespace Oza {
namespace {

TEST(Manager, HasSettingsThatHaveReadTheirFileAndANewHandler) {
  const TemporaryDirectory home;
  const ScopedEnv homeVariable("HOME", home.path());
  writeFile(home / ".Calvix/Common/2018.2/vestra", "RandomID=abc\n");
  const VestraMgr manager;
  EXPECT_EQ(manager.getSetting()->getPropertyValue("RandomID"), "abc");
  EXPECT_EQ(manager.getHandler()->getLogFileName(), "/vestra/tavlo_vestra.log");
  EXPECT_TRUE(manager.getHandler()->isParentEmpty(0));
}

TEST(Manager, IsOneInAProcess) { EXPECT_EQ(VestraMgr::getInstance(), VestraMgr::getInstance()); }

}  // namespace
}  // namespace Oza
