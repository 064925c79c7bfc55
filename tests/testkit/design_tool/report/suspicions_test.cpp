#include "design_tool/report/suspicions.h"

#include <gtest/gtest.h>

#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

std::string suspicionsIn(const std::string& script) {
  const std::vector<Rule> rules = parseRules("r.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  std::string text;
  for (const Warning& warning : suspicionsAbout(evaluateScript("s.tcl", script), rules)) {
    text += std::to_string(warning.line) + ": " + warning.message + "\n";
  }
  return text;
}

TEST(Suspicions, AreNamedAtTheirFirstLine) {
  const std::string item = addData("kelvo", "a", "1", "kelvo\\\\usage");
  const std::string registration = "vestra_register_client -client ";
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {item + addData("kelvo", "b", "1", "kelvo\\\\usage"), ""},
      {item + addData("project", "a", "1", "user_environment") +
           addData("project", "b", "1", "user_environment"),
       "4: client \"project\" has data but was never registered\n"},
      {addData("project", "a", "1", "user_environment") + registration + "project\n", ""},
      {registration + "{}\n", "3: the client that is registered has no name\n"},
      {registration + "kelvo\n", "3: client \"kelvo\" is registered again, first on line 2\n"},
      {addData("kelvo", "a", "1", "elsewhere") + addData("kelvo", "b", "1", "elsewhere"),
       "3: context \"elsewhere\" of client \"kelvo\" has no rule\n"},
      // A rule is for one client.
      {addData("kelvo", "a", "1", "user_environment"),
       "3: context \"user_environment\" of client \"kelvo\" has no rule\n"},
      {item + item + item + addData("kelvo", "a", "1", "kelvo\\\\command_line_options"),
       "4: key \"a\" occurs again in context \"kelvo\\usage\", first on line 3\n"},
      {"vestra_add_data -client kelvo -key a\\ b -value 1 -context {kelvo\\usage}\n",
       "3: Tcl has changed the key: \"a\\ b\" became \"a b\"\n3: key \"a b\" holds white space\n"},
      // In the order of the lines.
      {addData("kelvo", "a", "\\t", "elsewhere") + registration + "kelvo\n",
       "3: Tcl has changed the value: \"\\t\" became \"\\x09\"\n"
       "3: context \"elsewhere\" of client \"kelvo\" has no rule\n"
       "4: client \"kelvo\" is registered again, first on line 2\n"},
  };
  for (const auto& [lines, suspicions] : rows) {
    EXPECT_EQ(suspicionsIn(scriptAround(lines)), suspicions) << lines;
  }
  EXPECT_EQ(suspicionsIn("vestra_init -vestra_dir /p\nvestra_transmit -clientid 1 -regid R -xml x -html h "
                         "-wdm w -intro I\nvestra_terminate\n"),
            "2: no client is registered\n");
}

}  // namespace
}  // namespace vestra::design_tool
