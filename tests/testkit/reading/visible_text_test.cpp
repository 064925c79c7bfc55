#include "reading/visible_text.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

TEST(VisibleText, XmlHoldsTextWithTabsAndLineFeeds) {
  EXPECT_TRUE(isXmlText("a\tb\nc caf\xC3\xA9 \xF0\x9F\x93\x88 \x7F"));
}

TEST(VisibleText, XmlHoldsNoOtherControlCharacterNoNonCharacterAndNoStrayByte) {
  for (const std::string& bytes :
       {std::string("\0", 1), std::string("\x01"), std::string("\x08"), std::string("\x0B"),
        std::string("\r"), std::string("\x1F"), std::string("\xEF\xBF\xBE"), std::string("\xEF\xBF\xBF"),
        std::string("\xFF")}) {
    EXPECT_FALSE(isXmlText(bytes));
  }
}

TEST(VisibleText, EscapingForXmlCanBeUndone) {
  EXPECT_EQ(escapedForXml("a\\x07\x07\xFF\xEF\xBF\xBE"
                          "b\n"),
            "a\\\\x07\\x07\\xff\\xef\\xbf\\xbe"
            "b\n");
}

TEST(VisibleText, ATerminalGetsNothingThatItWouldObey) {
  EXPECT_EQ(forTerminal("\x1B[31mred\a\n\t\x7F\xC2\x9B caf\xC3\xA9 \xFF"),
            "\\x1b[31mred\\x07\\x0a\\x09\\x7f\\xc2\\x9b caf\xC3\xA9 \\xff");
}

TEST(VisibleText, AQuotedTextIsCutBetweenCharacters) {
  EXPECT_EQ(inQuotes("abc", 3), "\"abc\"");
  EXPECT_EQ(inQuotes("abcd", 3), "\"abc...\"");
  EXPECT_EQ(inQuotes("ab\xE2\x82\xAC"
                     "d",
                     4),
            "\"ab...\"");
  EXPECT_EQ(inQuotes("\x80\x80\x80\x80\x80\x80", 4), "\"\\x80...\"");
}

}  // namespace
}  // namespace vestra::reading
