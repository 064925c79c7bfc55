#include <vestra/vestra_data.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace Oza {
namespace {

bool sortsBefore(const std::string& a, const std::string& b) {
  VestraParentData context("context", "client", true);
  VestraAddData first(a, "", &context);
  VestraAddData second(b, "", &context);
  return key_compare()(&first, &second);
}

TEST(KeyCompare, ComparisonOrdersByteByByte) {
  EXPECT_TRUE(sortsBefore("abc", "abd"));
  EXPECT_FALSE(sortsBefore("abd", "abc"));
}

TEST(KeyCompare, CapitalsComeBeforeSmallLetters) {
  EXPECT_TRUE(sortsBefore("Z", "a"));
  EXPECT_FALSE(sortsBefore("a", "Z"));
}

TEST(KeyCompare, BytesAreUnsigned) {
  EXPECT_TRUE(sortsBefore("z", "\x80"));
  EXPECT_FALSE(sortsBefore("\xff", "a"));
}

TEST(KeyCompare, PrefixComesFirst) {
  EXPECT_TRUE(sortsBefore("project", "project_id"));
  EXPECT_FALSE(sortsBefore("project_id", "project"));
  EXPECT_TRUE(sortsBefore("", "a"));
}

TEST(KeyCompare, NulByteIsAByteLikeAnother) {
  EXPECT_TRUE(sortsBefore(std::string("a\0", 2), std::string("a\0b", 3)));
  EXPECT_TRUE(sortsBefore("a", std::string("a\0", 2)));
}

TEST(KeyCompare, ItemsWithTheSameKeyAreEquivalentWhateverTheirValues) {
  VestraParentData context("context", "client", true);
  VestraAddData first("key", "a", &context);
  VestraAddData second("key", "b", &context);
  EXPECT_FALSE(key_compare()(&first, &second));
  EXPECT_FALSE(key_compare()(&second, &first));

  const std::set<VestraDataInterface*, key_compare> items{&first, &second};
  EXPECT_EQ(items.size(), 1U);
  EXPECT_EQ(*items.begin(), &first);
}

}  // namespace
}  // namespace Oza
