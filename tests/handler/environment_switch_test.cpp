#include "handler/environment_switch.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/scoped_env.h"

namespace Oza {
namespace {

bool isOnWith(const std::optional<std::string>& value) {
  const vestra_test::ScopedEnv variable("VESTRA_TEST_SWITCH", value);
  return isSwitchedOn("VESTRA_TEST_SWITCH");
}

TEST(EnvironmentSwitch, SwitchIsOffWhenUnset) { EXPECT_FALSE(isOnWith(std::nullopt)); }

TEST(EnvironmentSwitch, SwitchIsOffWhenEmpty) { EXPECT_FALSE(isOnWith("")); }

TEST(EnvironmentSwitch, SwitchIsOnWithAnyText) {
  EXPECT_TRUE(isOnWith("1"));
  EXPECT_TRUE(isOnWith("0"));
  EXPECT_TRUE(isOnWith("false"));
  EXPECT_TRUE(isOnWith(" "));
}

TEST(EnvironmentSwitch, SwitchIsReadAnewEachTime) {
  const vestra_test::ScopedEnv on("VESTRA_TEST_SWITCH", "1");
  EXPECT_TRUE(isSwitchedOn("VESTRA_TEST_SWITCH"));
  {
    const vestra_test::ScopedEnv off("VESTRA_TEST_SWITCH", std::nullopt);
    EXPECT_FALSE(isSwitchedOn("VESTRA_TEST_SWITCH"));
  }
  EXPECT_TRUE(isSwitchedOn("VESTRA_TEST_SWITCH"));
}

}  // namespace
}  // namespace Oza
