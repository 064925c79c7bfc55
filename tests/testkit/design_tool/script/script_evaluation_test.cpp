#include "design_tool/script/script_evaluation.h"

#include <gtest/gtest.h>

#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

Report reportOf(const std::string& lines) { return evaluateScript("s.tcl", scriptAround(lines)); }

TEST(ScriptEvaluation, FindsAllThatTheScriptReports) {
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
}

TEST(ScriptEvaluation, KeepsEachByteAndReadsEscapes) {
  EXPECT_EQ(reportOf(addData("kelvo", "k", harmlessBytes(), "c")).items.at(0).value, harmlessBytes());
  EXPECT_EQ(reportOf(addData("kelvo", "k", "\\u20ac", "c")).items.at(0).value, "\xE2\x82\xAC");
}

TEST(ScriptEvaluation, CountsTheLineFeedsOfValues) {
  const std::string command = "vestra_add_data -client kelvo -key k -value 1 -context c";
  const Report report = reportOf(addData("kelvo", "a", "one\ntwo\nthree", "c") + "# comment\n\n" + command +
                                 "; " + command + "\n");
  ASSERT_EQ(report.items.size(), 3u);
  EXPECT_EQ(report.items[0].line, 3u);
  EXPECT_EQ(report.items[1].line, 8u);
  EXPECT_EQ(report.items[2].line, 8u);
}

TEST(ScriptEvaluation, ExplainsWhatIsWrong) {
  const std::string quoteHint = "; a double quote inside a value reaches the script as it is";
  const std::string braceHint = "; a brace at the start of a key reaches the script as it is";
  const std::string bracketHint = "; a square bracket inside a value asks Tcl to run a command";
  const auto item = [](const std::string& key, const std::string& value) {
    return scriptAround(addData("kelvo", key, value, "c"));
  };
  const std::pair<std::string, std::string> rows[] = {
      {scriptAround("vestra_add_data -client kelvo -key k -value \"x\ny\n z\" -contxt \"c\"\n"),
       "3: vestra_add_data: unknown option \"-contxt\"; it takes -client, -key, -value, -context"},
      {item("k", "a\"b"), "3: extra characters after close-quote" + quoteHint},
      {"set a 1\nset b \"kelvo\nset c 2\n", "2: missing \"" + quoteHint},
      {item("{k", "v"), "3: missing close-brace" + braceHint},
      {item("{k}x", "v"), "3: extra characters after close-brace" + braceHint},
      {item("k", "a $HOME b"),
       "3: can't read \"HOME\": no such variable; a dollar sign inside a value asks "
       "Tcl for a variable"},
      {item("k", "v[3]"), "3: invalid command name \"3\"" + bracketHint},
      {"set a a[b\n", "1: missing close-bracket" + bracketHint},
      {"vestra_inti -vestra_dir /p\n", "1: invalid command name \"vestra_inti\""},
      // A message of several lines.
      {"expr {1 +}\n", "1: missing operand at _@_ in expression \"1 +_@_\""},
      {scriptAround("foreach key {a b} {\n  vestra_add_data -client kelvo -key $key\n}\n"),
       "3: vestra_add_data: option -value is missing"},
  };
  for (const auto& [script, error] : rows) {
    EXPECT_EQ(errorOf(script), error) << script;
  }
}

TEST(ScriptEvaluation, RefusesEveryPrefixOfAReport) {
  const std::string script = scriptAround(addData("kelvo", "k", "a\nb", "kelvo\\\\usage"));
  for (std::size_t length = 0; length + 1 < script.size(); ++length) {
    EXPECT_NE(errorOf(script.substr(0, length)), "no error") << length;
  }
}

}  // namespace
}  // namespace vestra::design_tool
