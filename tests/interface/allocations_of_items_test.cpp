#include <gtest/gtest.h>

#include <map>
#include <string>

#include <vestra/vestra.h>

#include "interface/failing_allocations.h"
#include "support/child_process.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

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
    const long before = vestra_test::allocationsSoFar();
    addItem(key, value);
    ++itemsOfCount[vestra_test::allocationsSoFar() - before];
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
  const vestra_test::TemporaryDirectory home;
  const vestra_test::ScopedEnv homeVariable("HOME", home.path());
  return vestra_test::inChildProcess([&] {
    addItem("first", "item");
    return countAllocations(key, value);
  });
}

TEST(AllocationsOfAnItem, AllocationsAreThreeWithALongKeyAndValue) {
  EXPECT_EQ(allocationsOfItems("a_key_of_16_byte", "a value of 24 characters"),
            "990 items: 3\n10 items: 4\n");
}

TEST(AllocationsOfAnItem, AllocationsAreOneWithAShortKeyAndValue) {
  EXPECT_EQ(allocationsOfItems("a_short_ke", "of eight"), "990 items: 1\n10 items: 2\n");
}

}  // namespace
}  // namespace Oza
