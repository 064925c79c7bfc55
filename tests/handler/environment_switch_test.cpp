#include "handler/environment_switch.h"

#include "support/test.h"

namespace Oza {
namespace {

TEST(EnvironmentSwitch, IsOnWithAnyTextButTheEmptyOne) {
  const std::pair<std::optional<std::string>, bool> rows[] = {
      {std::nullopt, false}, {"1", true}, {"", false}, {"0", true}, {"false", true}, {" ", true}};
  for (const auto& [value, isOn] : rows) {
    const ScopedEnv variable("VESTRA_TEST_SWITCH", value);
    EXPECT_EQ(isSwitchedOn("VESTRA_TEST_SWITCH"), isOn) << value.value_or("unset");
  }
}

}  // namespace
}  // namespace Oza
