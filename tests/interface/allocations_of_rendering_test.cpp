#include <gtest/gtest.h>

#include <string>

#include <vestra/vestra_data.h>

#include "interface/failing_allocations.h"

namespace Oza {
namespace {

using Rendering = std::string (VestraParentData::*)();

class AllocationsOfRendering : public testing::Test {
 protected:
  AllocationsOfRendering() {
    one.addChild(new VestraAddData("a_key_of_16_byte", "a value of 24 characters", &one));
    for (int i = 0; i < 1000; ++i) {
      full.addChild(new VestraAddData("a_key_of_16_byte", "a value of 24 characters", &full));
    }
  }

  static long allocationsOf(VestraParentData& context, Rendering render) {
    const long before = vestra_test::allocationsSoFar();
    const std::string text = (context.*render)();
    return vestra_test::allocationsSoFar() - before;
  }

  VestraParentData one{"kelvo\\\\usage", "kelvo", false};
  VestraParentData full{"kelvo\\\\usage", "kelvo", false};
};

// The text is as large as the items, and is held beside them: it must not grow by copies.
TEST_F(AllocationsOfRendering, AreAsManyForAThousandItemsScriptTextAsForOne) {
  EXPECT_EQ(allocationsOf(full, &VestraParentData::toTclString),
            allocationsOf(one, &VestraParentData::toTclString));
}

TEST_F(AllocationsOfRendering, AreAsManyForAThousandItemsChecksumTextAsForOne) {
  EXPECT_EQ(allocationsOf(full, &VestraParentData::toCRCSegment),
            allocationsOf(one, &VestraParentData::toCRCSegment));
}

}  // namespace
}  // namespace Oza
