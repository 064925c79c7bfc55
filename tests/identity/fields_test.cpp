#include "identity/fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Oza::fieldsOf;
using testing::ElementsAre;

TEST(Fields, EachSeparatorGivesOneMore) {
  EXPECT_THAT(fieldsOf("os#Linux#cpu", '#'), ElementsAre("os", "Linux", "cpu"));
}

TEST(Fields, EmptyOnesAreKept) { EXPECT_THAT(fieldsOf("#a##", '#'), ElementsAre("", "a", "", "")); }

TEST(Fields, AnEmptyTextIsOneField) { EXPECT_THAT(fieldsOf("", '#'), ElementsAre("")); }

}  // namespace
