#include "data/byte_string.h"

#include "support/test.h"

namespace Oza {
namespace {

TEST(ByteString, IsACopyOfTheText) {
  for (const char* text : {"", "one two", "\x80\xff\xc3\xa9"}) {
    EXPECT_EQ(byteString(text), text);
  }
}

TEST(ByteString, OfNullThrowsTheTextThatHostsKnow) {
  EXPECT_EQ(errorOf([] { byteString(nullptr); }), "basic_string::_M_construct null not valid");
}

}  // namespace
}  // namespace Oza
