#include "design_tool/report/suspicions.h"

#include <gtest/gtest.h>

#include "design_tool/script/script_evaluation.h"
#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

std::string suspicionsIn(const std::string& lines) {
  const std::vector<Rule> rules = parseRules("r.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  std::string text;
  for (const Warning& warning : suspicionsAbout(evaluateScript("s.tcl", scriptAround(lines)), rules)) {
    text += std::to_string(warning.line) + ": " + warning.message + "\n";
  }
  return text;
}

TEST(Suspicions, AnOrdinaryReportIsNotWarnedOf) {
  EXPECT_EQ(suspicionsIn(addData("kelvo", "a", "1", "kelvo\\\\usage") +
                         addData("kelvo", "b", "1", "kelvo\\\\usage")),
            "");
}

TEST(Suspicions, AClientThatWasNeverRegisteredIsNamedAtItsFirstItem) {
  EXPECT_EQ(suspicionsIn(addData("kelvo", "a", "1", "kelvo\\\\usage") +
                         addData("project", "a", "1", "user_environment") +
                         addData("project", "b", "1", "user_environment")),
            "4: client \"project\" has data but was never registered\n");
}

TEST(Suspicions, ARegistrationAfterTheDataCounts) {
  EXPECT_EQ(suspicionsIn(addData("project", "a", "1", "user_environment") +
                         "vestra_register_client -client project\n"),
            "");
}

TEST(Suspicions, ARegisteredClientNeedsNoData) { EXPECT_EQ(suspicionsIn(""), ""); }

TEST(Suspicions, AMissingClientIsNamed) {
  const std::string transmit =
      "vestra_transmit -clientid 1 -regid R -xml x -html h -wdm w -intro I\nvestra_terminate\n";
  const std::vector<Warning> none =
      suspicionsAbout(evaluateScript("s.tcl", "vestra_init -vestra_dir /p\n" + transmit), {});
  ASSERT_EQ(none.size(), 1u);
  EXPECT_EQ(none[0].line, 2u);
  EXPECT_EQ(none[0].message, "no client is registered");
  EXPECT_EQ(suspicionsIn("vestra_register_client -client {}\n"),
            "3: the client that is registered has no name\n");
}

TEST(Suspicions, AClientRegisteredTwiceIsNamed) {
  EXPECT_EQ(suspicionsIn("vestra_register_client -client kelvo\n"),
            "3: client \"kelvo\" is registered again, first on line 2\n");
}

TEST(Suspicions, AContextWithoutARuleIsNamedAtItsFirstItem) {
  EXPECT_EQ(suspicionsIn(addData("kelvo", "a", "1", "elsewhere") + addData("kelvo", "b", "1", "elsewhere")),
            "3: context \"elsewhere\" of client \"kelvo\" has no rule\n");
}

TEST(Suspicions, ARuleIsForItsClientOnly) {
  EXPECT_EQ(suspicionsIn(addData("kelvo", "a", "1", "user_environment")),
            "3: context \"user_environment\" of client \"kelvo\" has no rule\n");
}

TEST(Suspicions, AKeyThatOccursAgainInItsContextIsNamedOnce) {
  const std::string item = addData("kelvo", "a", "1", "kelvo\\\\usage");
  EXPECT_EQ(suspicionsIn(item + item + item + addData("kelvo", "a", "1", "kelvo\\\\command_line_options")),
            "4: key \"a\" occurs again in context \"kelvo\\usage\", first on line 3\n");
}

TEST(Suspicions, AKeyWithWhiteSpaceIsNamed) {
  EXPECT_EQ(suspicionsIn("vestra_add_data -client kelvo -key a\\ b -value 1 -context {kelvo\\usage}\n"),
            "3: Tcl has changed the key: \"a\\ b\" became \"a b\"\n"
            "3: key \"a b\" holds white space\n");
}

TEST(Suspicions, WarningsStandInTheOrderOfTheLines) {
  EXPECT_EQ(
      suspicionsIn(addData("kelvo", "a", "\\t", "elsewhere") + "vestra_register_client -client kelvo\n" +
                   addData("other", "a", "\\t", "elsewhere")),
      "3: Tcl has changed the value: \"\\t\" became \"\\x09\"\n"
      "3: context \"elsewhere\" of client \"kelvo\" has no rule\n"
      "4: client \"kelvo\" is registered again, first on line 2\n"
      "5: Tcl has changed the value: \"\\t\" became \"\\x09\"\n"
      "5: client \"other\" has data but was never registered\n"
      "5: context \"elsewhere\" of client \"other\" has no rule\n");
}

}  // namespace
}  // namespace vestra::design_tool
