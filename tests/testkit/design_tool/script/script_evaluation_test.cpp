#include "design_tool/script/script_evaluation.h"

#include <gtest/gtest.h>

#include "testkit/design_tool/script/error_text.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

Report reportOf(const std::string& lines) { return evaluateScript("s.tcl", scriptAround(lines)); }

TEST(ScriptEvaluation, AReportHoldsAllThatTheScriptSaid) {
  const Report report = reportOf(addData("kelvo", "runs", "2", "kelvo\\\\usage"));
  EXPECT_EQ(report.vestraDir, "/p/vestra/");
  ASSERT_EQ(report.registrations.size(), 1u);
  EXPECT_EQ(report.registrations[0].client, "kelvo");
  EXPECT_EQ(report.registrations[0].line, 2u);
  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].key, "runs");
  EXPECT_EQ(report.items[0].value, "2");
  EXPECT_EQ(report.items[0].line, 3u);
  ASSERT_EQ(report.sections.size(), 1u);
  EXPECT_EQ(report.sections[0].client, "kelvo");
  EXPECT_EQ(report.sections[0].context, "kelvo\\usage");
  EXPECT_EQ(report.transmission.clientId, 1u);
  EXPECT_EQ(report.transmission.registrationId, "R");
  EXPECT_EQ(report.transmission.xml, "/p/x");
  EXPECT_EQ(report.transmission.html, "/p/h");
  EXPECT_EQ(report.transmission.wdm, "/p/w");
  EXPECT_EQ(report.transmission.intro, "<H3>I</H3><BR>");
  EXPECT_EQ(report.transmission.line, 4u);
  EXPECT_TRUE(report.warnings.empty());
}

TEST(ScriptEvaluation, EveryByteButThoseThatTclReadsReachesTheReport) {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    if (std::string("\"\\$[").find(static_cast<char>(value)) == std::string::npos) {
      bytes += static_cast<char>(value);
    }
  }
  const Report report = reportOf(addData("kelvo", "k", bytes, "c"));
  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].value, bytes);
  EXPECT_TRUE(report.warnings.empty());
}

TEST(ScriptEvaluation, ACharacterMadeByAnEscapeBecomesItsUtf8) {
  EXPECT_EQ(reportOf(addData("kelvo", "k", "\\u20ac", "c")).items[0].value, "\xE2\x82\xAC");
}

TEST(ScriptEvaluation, LinesAreRightAfterAValueThatHoldsLineFeeds) {
  const Report report = reportOf(addData("kelvo", "a", "one\ntwo\nthree", "c") + "# comment\n\n" +
                                 addData("kelvo", "b", "v", "c"));
  ASSERT_EQ(report.items.size(), 2u);
  EXPECT_EQ(report.items[0].line, 3u);
  EXPECT_EQ(report.items[1].line, 8u);
}

TEST(ScriptEvaluation, SeveralCommandsMayShareALine) {
  const Report report = reportOf(
      "vestra_add_data -client kelvo -key a -value 1 -context c; vestra_add_data -client kelvo "
      "-key b -value 2 -context c\n");
  ASSERT_EQ(report.items.size(), 2u);
  EXPECT_EQ(report.items[1].line, 3u);
}

TEST(ScriptEvaluation, AWordIsMarkedOnTheLineItStandsOn) {
  EXPECT_EQ(errorOf(scriptAround("vestra_add_data -client kelvo -key k -value \"x\ny\n z\" -contxt \"c\"\n")),
            "s.tcl:5: vestra_add_data: unknown option \"-contxt\"; it takes -client, -key, -value, -context\n"
            "     z\" -contxt \"c\"\n"
            "        ^~~~~~~\n");
}

TEST(ScriptEvaluation, ADoubleQuoteInsideAValueIsExplained) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "k", "a\"b", "c"))),
            "s.tcl:3: extra characters after close-quote; a double quote inside a value reaches the script "
            "as it is\n"
            "    vestra_add_data -client kelvo -key k -value \"a\"b\" -context \"c\"\n"
            "                                                   ^\n");
}

TEST(ScriptEvaluation, AnUnbalancedQuoteIsFoundWhereItOpens) {
  EXPECT_EQ(
      errorOf(scriptAround("").substr(0, 35) + "vestra_register_client -client \"kelvo\nvestra_terminate\n"),
      "s.tcl:2: missing \"; a double quote inside a value reaches the script as it is\n"
      "    vestra_register_client -client \"kelvo\n"
      "                                   ^\n");
}

TEST(ScriptEvaluation, ABraceAtTheStartOfAKeyIsExplained) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "{k", "v", "c"))),
            "s.tcl:3: missing close-brace; a brace at the start of a key reaches the script as it is\n"
            "    vestra_add_data -client kelvo -key {k -value \"v\" -context \"c\"\n"
            "                                       ^\n");
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "{k}x", "v", "c"))),
            "s.tcl:3: extra characters after close-brace; a brace at the start of a key reaches the script "
            "as it is\n"
            "    vestra_add_data -client kelvo -key {k}x -value \"v\" -context \"c\"\n"
            "                                          ^\n");
}

TEST(ScriptEvaluation, ADollarSignInsideAValueIsExplained) {
  EXPECT_EQ(
      errorOf(scriptAround(addData("kelvo", "k", "a $HOME b", "c"))),
      "s.tcl:3: can't read \"HOME\": no such variable; a dollar sign inside a value asks Tcl for a variable\n"
      "    vestra_add_data -client kelvo -key k -value \"a $HOME b\" -context \"c\"\n"
      "                                                ^~~~~~~~~~~\n");
}

TEST(ScriptEvaluation, ASquareBracketInsideAValueIsExplained) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "k", "v[3]", "c"))),
            "s.tcl:3: invalid command name \"3\"; a square bracket inside a value asks Tcl to run a command\n"
            "    vestra_add_data -client kelvo -key k -value \"v[3]\" -context \"c\"\n"
            "                                                ^~~~~~\n");
  EXPECT_EQ(errorOf("vestra_init -vestra_dir a[b\n"),
            "s.tcl:1: missing close-bracket; a square bracket inside a value asks Tcl to run a command\n"
            "    vestra_init -vestra_dir a[b\n"
            "                             ^\n");
}

TEST(ScriptEvaluation, AnUnknownCommandIsMarked) {
  EXPECT_EQ(errorOf("vestra_inti -vestra_dir /p\n"),
            "s.tcl:1: invalid command name \"vestra_inti\"\n"
            "    vestra_inti -vestra_dir /p\n"
            "    ^~~~~~~~~~~\n");
}

TEST(ScriptEvaluation, AMessageOfSeveralLinesBecomesOne) {
  EXPECT_EQ(errorOf("expr {1 +}\n"),
            "s.tcl:1: missing operand at _@_ in expression \"1 +_@_\"\n"
            "    expr {1 +}\n"
            "    ^~~~\n");
}

TEST(ScriptEvaluation, AnErrorInsideALoopIsMarkedAtTheLoop) {
  EXPECT_EQ(errorOf(scriptAround("foreach key {a b} {\n  vestra_add_data -client kelvo -key $key\n}\n")),
            "s.tcl:3: vestra_add_data: option -value is missing\n"
            "    foreach key {a b} {\n"
            "    ^~~~~~~\n");
}

TEST(ScriptEvaluation, AValueThatTclHasChangedIsWarnedOf) {
  const Report report = reportOf(addData("kelvo", "path", "C:\\temp", "c"));
  ASSERT_EQ(report.warnings.size(), 1u);
  EXPECT_EQ(report.warnings[0].line, 3u);
  EXPECT_EQ(report.warnings[0].message, "Tcl has changed the value: \"C:\\temp\" became \"C:\\x09emp\"");
}

TEST(ScriptEvaluation, AKeyAClientAndAContextThatTclHasChangedAreWarnedOf) {
  const Report report =
      reportOf("vestra_add_data -client {kelvo} -key \"k\" -value \"v\" -context \"a\\tb\"\n");
  ASSERT_EQ(report.warnings.size(), 3u);
  EXPECT_EQ(report.warnings[0].message, "Tcl has changed the client: \"{kelvo}\" became \"kelvo\"");
  EXPECT_EQ(report.warnings[1].message, "Tcl has changed the key: \"\"k\"\" became \"k\"");
  EXPECT_EQ(report.warnings[2].message, "Tcl has changed the context: \"a\\tb\" became \"a\\x09b\"");
}

TEST(ScriptEvaluation, ThePairOfBackslashesInAContextIsMeant) {
  EXPECT_TRUE(reportOf(addData("kelvo", "k", "v", "kelvo\\\\usage")).warnings.empty());
  EXPECT_EQ(reportOf(addData("kelvo", "k", "a\\\\b", "c")).warnings.size(), 1u);
}

TEST(ScriptEvaluation, DataFromALoopIsNotWarnedOf) {
  const Report report =
      reportOf("foreach value {a b} {vestra_add_data -client kelvo -key $value -value $value -context c}\n");
  EXPECT_EQ(report.items.size(), 2u);
  EXPECT_TRUE(report.warnings.empty());
}

TEST(ScriptEvaluation, TheObserverHearsOfEachCommandsLine) {
  static std::string lines;
  lines.clear();
  evaluateScript("s.tcl", scriptAround(addData("kelvo", "k", "a\nb", "c")), {},
                 [](std::size_t line) { lines += std::to_string(line) + " "; });
  EXPECT_EQ(lines, "1 2 3 5 6 0 ");
}

TEST(ScriptEvaluation, EveryPrefixOfAReportIsIncompleteAndSafe) {
  const std::string script = scriptAround(addData("kelvo", "k", "a\nb", "kelvo\\\\usage"));
  for (std::size_t length = 0; length + 1 < script.size(); ++length) {
    EXPECT_NE(errorOf(script.substr(0, length)), "no error") << length;
  }
}

}  // namespace
}  // namespace vestra::design_tool
