#include "reading/tcl_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

using testing::ElementsAre;
using Cause = TclSyntaxError::Cause;

std::vector<std::string> wordsOf(const std::string& text, std::size_t position = 0) {
  std::vector<std::string> words;
  for (const TclWord& word : parseTclCommand(text, position).words) {
    words.push_back(text.substr(word.span.begin, word.span.length));
  }
  return words;
}

TclWord onlyWord(const std::string& text) { return parseTclCommand(text, 0).words.at(0); }

std::string contentOf(const std::string& text) {
  const Span content = onlyWord(text).content;
  return text.substr(content.begin, content.length);
}

TEST(TclCommand, WordsOfACommandKeepTheirQuotesAndBraces) {
  EXPECT_THAT(wordsOf("set a \"b c\" {d e}\n"), ElementsAre("set", "a", "\"b c\"", "{d e}"));
}

TEST(TclCommand, ACommandBeginsWhereTheOneBeforeEnds) {
  const std::string text = "first 1\n# between\n\nsecond 2; third 3";
  const std::size_t second = parseTclCommand(text, 0).end();
  EXPECT_THAT(wordsOf(text, second), ElementsAre("second", "2"));
  EXPECT_THAT(wordsOf(text, parseTclCommand(text, second).end()), ElementsAre("third", "3"));
}

TEST(TclCommand, CommentsAndBlankLinesAloneHaveNoWords) {
  const std::string text = "# a comment\n \n";
  EXPECT_THAT(wordsOf(text), ElementsAre());
  EXPECT_EQ(parseTclCommand(text, 0).end(), text.size());
}

TEST(TclCommand, AContentHasNoQuotesAndNoBraces) {
  EXPECT_EQ(contentOf("bare"), "bare");
  EXPECT_EQ(contentOf("\"quoted\""), "quoted");
  EXPECT_EQ(contentOf("{braced}"), "braced");
  EXPECT_EQ(contentOf("\"\""), "");
}

TEST(TclCommand, AWordWithoutSubstitutionIsLiteral) {
  EXPECT_TRUE(onlyWord("a").isLiteral);
  EXPECT_TRUE(onlyWord("\"a b\"").isLiteral);
  EXPECT_TRUE(onlyWord("{a $b}").isLiteral);
  EXPECT_FALSE(onlyWord("a\\n").isLiteral);
}

TEST(TclCommand, SubstitutionsInAWordAreTold) {
  EXPECT_TRUE(onlyWord("a$b").readsVariable);
  EXPECT_TRUE(onlyWord("\"a[b]\"").runsCommand);
  EXPECT_TRUE(onlyWord("{*}$b").isExpanded);
  EXPECT_FALSE(onlyWord("a$b").runsCommand);
  EXPECT_FALSE(onlyWord("{$b [c]}").runsCommand || onlyWord("{$b [c]}").readsVariable);
}

std::string errorIn(const std::string& text, Cause cause, std::size_t position) {
  try {
    parseTclCommand(text, 0);
    return "no error";
  } catch (const TclSyntaxError& error) {
    EXPECT_EQ(error.cause(), cause);
    EXPECT_EQ(error.position(), position);
    return error.what();
  }
}

TEST(TclCommand, ATextThatIsNoCommandSaysWhyAndWhere) {
  EXPECT_EQ(errorIn("a \"b\"c", Cause::Quote, 5), "extra characters after close-quote");
  EXPECT_EQ(errorIn("a \"b", Cause::Quote, 2), "missing \"");
  EXPECT_EQ(errorIn("a {b}c", Cause::Brace, 5), "extra characters after close-brace");
  EXPECT_EQ(errorIn("a {b", Cause::Brace, 2), "missing close-brace");
  EXPECT_EQ(errorIn("a [b", Cause::Bracket, 2), "missing close-bracket");
  EXPECT_EQ(errorIn("a $b(c", Cause::Other, 4), "missing )");
  EXPECT_EQ(errorIn("a ${b", Cause::Other, 3), "missing close-brace for variable name");
}

}  // namespace
}  // namespace vestra::reading
