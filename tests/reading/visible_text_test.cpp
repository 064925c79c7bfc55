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

TEST(VisibleText, EscapesMarkupForHtmlAndNamesInvisibleBytes) {
  EXPECT_EQ(escapedForHtml("<a b='c' d=\"e\">&\n\t"), "&lt;a b=&#39;c&#39; d=&quot;e&quot;&gt;&amp;\n\t");
  EXPECT_EQ(escapedForHtml("\r\x7F\xFF"),
            "<span class=\"byte\">\\x0d</span><span class=\"byte\">\\x7f</span>"
            "<span class=\"byte\">\\xff</span>");
}

TEST(VisibleText, ATerminalGetsNothingThatItWouldObey) {
  EXPECT_EQ(forTerminal("\x1B[31mred\a\n\t\x7F\xC2\x9B caf\xC3\xA9 \xFF"),
            "\\x1b[31mred\\x07\\x0a\\x09\\x7f\\xc2\\x9b caf\xC3\xA9 \\xff");
}

TEST(VisibleText, CharactersThatTurnTheDirectionOrHaveNoWidthAreNamed) {
  for (const std::string& hidden :
       std::vector<std::string>{"\u202E", "\u2066", "\u200F", "\u061C", "\u200B", "\u200D", "\u2060",
                                "\uFEFF", "\u00AD", "\u2028", "\u3164", "\U000E0041"}) {
    EXPECT_EQ(forTerminal("a" + hidden + "b"), "a" + namedBytes(hidden) + "b");
  }
  EXPECT_EQ(forTerminal("\u05E9\u05DC\u05D5\u05DD \u20AC"), "\u05E9\u05DC\u05D5\u05DD \u20AC");
}

TEST(VisibleText, ATextOfBlanksAloneIsBlank) {
  for (const char* blank : {" ", "\t\n", "  \u00A0", "\u3000\u2003"}) {
    EXPECT_TRUE(isBlank(blank));
  }
  for (const char* other : {"", " a ", "\x01", "\xA0", "\u200B"}) {
    EXPECT_FALSE(isBlank(other));
  }
  EXPECT_EQ(namedBytes(" \t"), "\\x20\\x09");
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
