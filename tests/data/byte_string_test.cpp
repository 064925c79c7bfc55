#include "data/byte_string.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Oza {
namespace {

TEST(ByteString, CopiesTheText) { EXPECT_EQ(byteString("one two"), "one two"); }

TEST(ByteString, OfTheEmptyTextIsEmpty) { EXPECT_EQ(byteString(""), ""); }

TEST(ByteString, KeepsBytesAbove127) { EXPECT_EQ(byteString("\x80\xff\xc3\xa9"), "\x80\xff\xc3\xa9"); }

TEST(ByteString, OfNullThrowsTheTextThatHostsKnow) {
  try {
    byteString(nullptr);
    FAIL() << "nothing was thrown";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
  }
}

}  // namespace
}  // namespace Oza
