#include "reading/utf8.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

TEST(Utf8, ACharacterHasItsLengthAndNumber) {
  const Utf8Character euro = firstCharacter("\xE2\x82\xAC rest");
  EXPECT_EQ(euro.length, 3u);
  EXPECT_EQ(euro.codePoint, char32_t{0x20AC});
}

TEST(Utf8, TheSmallestAndTheLargestCharacterOfEachLengthAreRead) {
  EXPECT_EQ(firstCharacter(std::string_view("\0", 1)).length, 1u);
  EXPECT_EQ(firstCharacter("\x7F").codePoint, char32_t{0x7F});
  EXPECT_EQ(firstCharacter("\xC2\x80").codePoint, char32_t{0x80});
  EXPECT_EQ(firstCharacter("\xDF\xBF").codePoint, char32_t{0x7FF});
  EXPECT_EQ(firstCharacter("\xE0\xA0\x80").codePoint, char32_t{0x800});
  EXPECT_EQ(firstCharacter("\xEF\xBF\xBF").codePoint, char32_t{0xFFFF});
  EXPECT_EQ(firstCharacter("\xF0\x90\x80\x80").codePoint, char32_t{0x10000});
  EXPECT_EQ(firstCharacter("\xF4\x8F\xBF\xBF").codePoint, char32_t{0x10FFFF});
}

TEST(Utf8, BytesThatAreNoUtf8AreRefused) {
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
        "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
    EXPECT_EQ(firstCharacter(bytes).length, 0u) << bytes;
    EXPECT_FALSE(isUtf8(std::string("fine until here ") + bytes));
  }
}

TEST(Utf8, TheEmptyTextIsUtf8AndHasNoCharacter) {
  EXPECT_TRUE(isUtf8(""));
  EXPECT_EQ(firstCharacter("").length, 0u);
}

}  // namespace
}  // namespace vestra::reading
