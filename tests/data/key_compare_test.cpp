#include <set>

#include <vestra/vestra_data.h>

#include "support/test.h"

namespace Oza {
namespace {

bool sortsBefore(const std::string& a, const std::string& b) {
  VestraParentData context("context", "client", true);
  VestraAddData first(a, "", &context);
  VestraAddData second(b, "", &context);
  return key_compare()(&first, &second);
}

TEST(KeyCompare, OrdersByteByByte) {
  const std::pair<std::string, std::string> rows[] = {
      {"abc", "abd"}, {"Z", "a"},        {"z", "\x80"}, {"a", "\xff"}, {"project", "project_id"},
      {"", "a"},      {"a\0"s, "a\0b"s}, {"a", "a\0"s}};
  for (const auto& [first, second] : rows) {
    EXPECT_TRUE(sortsBefore(first, second)) << first;
    EXPECT_FALSE(sortsBefore(second, first)) << first;
  }
}

TEST(KeyCompare, FindsItemsWithTheSameKeyEquivalentWhateverTheirValues) {
  VestraParentData context("context", "client", true);
  VestraAddData first("key", "a", &context);
  VestraAddData second("key", "b", &context);
  EXPECT_FALSE(key_compare()(&first, &second));
  EXPECT_FALSE(key_compare()(&second, &first));

  const std::set<VestraDataInterface*, key_compare> items{&first, &second};
  EXPECT_THAT(items, ElementsAre(&first));
}

}  // namespace
}  // namespace Oza
