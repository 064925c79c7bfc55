#include "reading/utf8.h"

#include <gtest/gtest.h>

#include <tuple>

namespace vestra::reading {
namespace {

TEST(Utf8, HasCharactersWithALengthAndANumber) {
  const std::tuple<std::string, std::size_t, char32_t> rows[] = {{std::string(1, '\0'), 1, 0},
                                                                 {"\x7F", 1, 0x7F},
                                                                 {"\xC2\x80", 2, 0x80},
                                                                 {"\xDF\xBF", 2, 0x7FF},
                                                                 {"\xE0\xA0\x80", 3, 0x800},
                                                                 {"\xE2\x82\xAC rest", 3, 0x20AC},
                                                                 {"\xEF\xBF\xBF", 3, 0xFFFF},
                                                                 {"\xF0\x90\x80\x80", 4, 0x10000},
                                                                 {"\xF4\x8F\xBF\xBF", 4, 0x10FFFF},
                                                                 {"", 0, 0}};
  for (const auto& [bytes, length, codePoint] : rows) {
    EXPECT_EQ(firstCharacter(bytes).length, length) << bytes;
    EXPECT_EQ(firstCharacter(bytes).codePoint, codePoint) << bytes;
    EXPECT_TRUE(isUtf8(bytes));
  }
}

TEST(Utf8, BytesThatAreNoUtf8AreRefused) {
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
        "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
    EXPECT_EQ(firstCharacter(bytes).length, 0u) << bytes;
    EXPECT_FALSE(isUtf8(std::string("fine until here ") + bytes));
  }
}

}  // namespace
}  // namespace vestra::reading
