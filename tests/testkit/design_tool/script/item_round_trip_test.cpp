#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <tuple>

#include "design_tool/script/script_evaluation.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

using Texts = std::tuple<std::string, std::string>;

rc::Gen<char> byteBut(const std::string& hazards) {
  return rc::gen::suchThat(
      rc::gen::map(rc::gen::inRange(0, 256), [](int value) { return static_cast<char>(value); }),
      [=](char byte) { return hazards.find(byte) == std::string::npos; });
}

/// Values stand between double quotes: only what the interpreter reads there is a hazard.
rc::Gen<std::string> values() { return rc::gen::container<std::string>(byteBut("\"\\$[")); }

/// Keys stand bare: white space and what ends a command part them, and what opens quotes or braces changes
/// them.
rc::Gen<std::string> keys() {
  return rc::gen::nonEmpty(rc::gen::container<std::string>(byteBut("\"\\$[{}; \t\n\v\f\r")));
}

RC_GTEST_PROP(ItemRoundTrip, ItemsWithoutHazardsComeOutAsTheyWentIn, ()) {
  const auto items = *rc::gen::container<std::vector<Texts>>(rc::gen::tuple(keys(), values()));
  std::string lines;
  for (const auto& [key, value] : items) {
    lines += addData("kelvo", key, value, "kelvo\\\\usage");
  }
  const Report report = evaluateScript("s.tcl", scriptAround(lines));
  RC_ASSERT(report.items.size() == items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    RC_ASSERT(report.items[i].key == std::get<0>(items[i]));
    RC_ASSERT(report.items[i].value == std::get<1>(items[i]));
  }
}

}  // namespace
}  // namespace vestra::design_tool
