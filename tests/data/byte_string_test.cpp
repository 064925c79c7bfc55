#include "data/byte_string.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Oza {
namespace {

TEST(ByteString, CopyCopiesTheText) { EXPECT_EQ(byteString("one two"), "one two"); }

TEST(ByteString, CopyOfTheEmptyTextIsEmpty) { EXPECT_EQ(byteString(""), ""); }

TEST(ByteString, CopyKeepsBytesAbove127) { EXPECT_EQ(byteString("\x80\xff\xc3\xa9"), "\x80\xff\xc3\xa9"); }

TEST(ByteString, NullThrowsTheTextThatHostsKnow) {
  try {
    byteString(nullptr);
    FAIL() << "nothing was thrown";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
  }
}

}  // namespace
}  // namespace Oza
