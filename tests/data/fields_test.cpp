#include "data/fields.h"

#include <gmock/gmock.h>

namespace {

using Oza::fieldsOf;
using testing::ElementsAre;

TEST(Fields, StandBetweenTheSeparators) {
  EXPECT_THAT(fieldsOf("a#1#b", '#'), ElementsAre("a", "1", "b"));
  EXPECT_THAT(fieldsOf("k=a=b", '='), ElementsAre("k", "a", "b"));
}

TEST(Fields, MayBeEmpty) {
  EXPECT_THAT(fieldsOf("", '#'), ElementsAre(""));
  EXPECT_THAT(fieldsOf("#", '#'), ElementsAre("", ""));
  EXPECT_THAT(fieldsOf("a##b#", '#'), ElementsAre("a", "", "b", ""));
}

TEST(Fields, KnowOnlyTheirOwnSeparator) { EXPECT_THAT(fieldsOf("a=1", '#'), ElementsAre("a=1")); }

}  // namespace
