#include "design_tool/rules/rules.h"

#include <gtest/gtest.h>

#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

std::string errorOfRules(const std::string& text) {
  return errorIn("r.wdm", [&] { parseRules("r.wdm", text); });
}

std::string rulesWith(const std::string& rule) {
  return "version = \"1.0\";\nclients = ( { client_name = \"c\"; rules = (\n" + rule + "\n); } );\n";
}

TEST(Rules, AreReadFromTheLibrarysFile) {
  const std::vector<Rule> rules = parseRules("r.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  ASSERT_EQ(rules.size(), 4u);
  EXPECT_EQ(rules[1].client, "project");
  EXPECT_EQ(rules[1].context, "user_environment");
  EXPECT_EQ(rules[1].htmlStyle, HtmlStyle::UserEnvironment);
  EXPECT_EQ(rules[3].client, "kelvo");
  EXPECT_EQ(rules[3].context, "kelvo\\usage");
  EXPECT_EQ(rules[3].xmlMap, "kelvo\\usage");
  EXPECT_EQ(rules[3].htmlMap, "kelvo\\usage");
  EXPECT_EQ(rules[3].htmlStyle, HtmlStyle::Statistics);
}

TEST(Rules, AreRefusedWhereverTheyAreCut) {
  const std::string text = golden("usage_statistics_ext_kelvo.wdm");
  const std::size_t end = text.rfind(')') + 1;
  for (std::size_t length = 0; length < end; ++length) {
    EXPECT_NE(errorOfRules(text.substr(0, length)), "no error") << length;
  }
  EXPECT_EQ(errorOfRules(text.substr(0, end)), "no error");
}

TEST(Rules, AreRefusedWithTheLineThatIsWrong) {
  const std::string version = "version = \"1.0\";\n";
  const std::string rule =
      "{ context = \"a\"; xml_map = \"a\"; html_map = \"a\"; html_format = \"UserEnvStyle\"; }";
  const std::pair<std::string, std::string> rows[] = {
      {"", "1: setting version is missing"},
      {version + "clients = (\n  oops\n);\n", "3: syntax error"},
      {"clients = ();\n", "1: setting version is missing"},
      {"clients = ();\nversion = \"2.0\";\n", "2: version \"2.0\" is not known, only \"1.0\""},
      {"version = 1.0;\nclients = ();\n", "1: setting version is not a text in double quotes"},
      {version, "1: setting clients is missing"},
      {version + "clients = \"none\";\n", "2: setting clients is not a list in parentheses"},
      {version + "clients = (\n\"kelvo\");\n", "3: a client is not a group in braces"},
      {rulesWith("{ context = \"a\"; xml_map = \"a\"; html_format = \"UserEnvStyle\"; }"),
       "3: setting html_map is missing"},
      {rulesWith("{ context = \"a\"; xml_map = \"a\"; html_map = \"a\";\nhtml_format = \"Plain\"; }"),
       "4: html_format \"Plain\" is not known"},
      {rulesWith(rule + ",\n" + rule), "4: client \"c\" has another rule for context \"a\" already"},
      {rulesWith(""), "no error"},
      {"# @include is mentioned\n" + rulesWith(""), "no error"},
      {version + "  @include \"/dev/zero\"\n", "2: @include is not supported"},
      {version + "clients = ();\n" + std::string("\0 nonsense", 10), "3: the rules hold a NUL byte"},
      {version + "clients = " + std::string(100'000, '(') + "\n", "2: memory exhausted"},
  };
  for (const auto& [text, error] : rows) {
    EXPECT_EQ(errorOfRules(text), error) << text.substr(0, 200);
  }
}

}  // namespace
}  // namespace vestra::design_tool
