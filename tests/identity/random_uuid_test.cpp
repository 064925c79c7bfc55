#include "identity/random_uuid.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/scoped_locale.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using vestra_test::isRandomUuid;

TEST(RandomUuid, RandomUuidIsAVersion4IdentifierInCanonicalForm) {
  for (int i = 0; i < 1000; ++i) {
    const std::string uuid = randomUuid();
    EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
  }
}

TEST(RandomUuid, RandomUuidIsAnotherOneEachTime) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    seen.insert(randomUuid());
  }
  EXPECT_EQ(seen.size(), 1000U);
}

TEST(RandomUuid, RandomUuidUsesEveryVariantDigit) {
  std::set<char> seen;
  for (int i = 0; i < 1000; ++i) {
    seen.insert(randomUuid()[19]);
  }
  EXPECT_EQ(seen, (std::set<char>{'8', '9', 'a', 'b'}));
}

TEST(RandomUuid, RandomUuidDoesNotMindTheHostsLocale) {
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  const std::string uuid = randomUuid();
  EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
}

}  // namespace
}  // namespace Oza
