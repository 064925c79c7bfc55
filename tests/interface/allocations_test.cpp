#include <map>

#include <vestra/vestra.h>
#include <vestra/vestra_data.h>

#include "interface/failing_allocations.h"
#include "support/test.h"

namespace Oza {
namespace {

constexpr int ITEMS = 1000;

void addItem(const std::string& key, const std::string& value) {
  Vestra::add(key.c_str(), value.c_str(), Vestra::KELVO_USAGE);
}

/// How many items took how many allocations.
std::string countAllocations(const std::string& key, const std::string& value) {
  std::map<long, int> itemsOfCount;
  for (int i = 0; i < ITEMS; ++i) {
    const long before = allocationsSoFar();
    addItem(key, value);
    ++itemsOfCount[allocationsSoFar() - before];
  }
  std::string text;
  for (const auto& [count, items] : itemsOfCount) {
    text += std::to_string(items) + " items: " + std::to_string(count) + "\n";
  }
  return text;
}

/// Those after the first item of a process, which makes the manager. While the list of
/// items doubles its room from 1 to 1024, ten of them take one more.
std::string allocationsOfItems(const std::string& key, const std::string& value) {
  const TemporaryDirectory home;
  const ScopedEnv homeVariable("HOME", home.path());
  return inChildProcess([&] {
    addItem("first", "item");
    return countAllocations(key, value);
  });
}

TEST(AllocationsOfAnItem, AreThreeWithALongKeyAndValueAndOneWithShortOnes) {
  EXPECT_EQ(allocationsOfItems("a_key_of_16_byte", "a value of 24 characters"),
            "990 items: 3\n10 items: 4\n");
  EXPECT_EQ(allocationsOfItems("a_short_ke", "of eight"), "990 items: 1\n10 items: 2\n");
}

/// Those of a context's two texts.
std::pair<long, long> allocationsOfRendering(int items) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  for (int i = 0; i < items; ++i) {
    context.addChild(new VestraAddData("a_key_of_16_byte", "a value of 24 characters", &context));
  }
  const long before = allocationsSoFar();
  const std::string lines = context.toTclString();
  const long between = allocationsSoFar();
  const std::string segments = context.toCRCSegment();
  return {between - before, allocationsSoFar() - between};
}

// The text is as large as the items, and is held beside them: it must not grow by copies.
TEST(AllocationsOfRendering, AreAsManyForAThousandItemsAsForOne) {
  EXPECT_EQ(allocationsOfRendering(ITEMS), allocationsOfRendering(1));
}

}  // namespace
}  // namespace Oza
