#include "design_tool/rules/rules.h"

#include <gtest/gtest.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "testkit/design_tool/golden.h"

namespace vestra::design_tool {
namespace {

std::string errorIn(const std::string& text) {
  try {
    parseRules("r.wdm", text);
    return "no error";
  } catch (const DiagnosedError& error) {
    return format(error.diagnostic());
  }
}

std::string rulesWith(const std::string& rule) {
  return "version = \"1.0\";\nclients = ( { client_name = \"c\"; rules = (\n" + rule + "\n); } );\n";
}

TEST(Rules, TheLibrarysOwnFileIsRead) {
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

TEST(Rules, EveryPrefixOfTheRulesIsRefused) {
  const std::string text = golden("usage_statistics_ext_kelvo.wdm");
  const std::size_t end = text.rfind(')') + 1;
  for (std::size_t length = 0; length < end; ++length) {
    EXPECT_NE(errorIn(text.substr(0, length)), "no error") << length;
  }
  EXPECT_EQ(errorIn(text.substr(0, end)), "no error");
}

TEST(Rules, ABrokenLineOfTheRulesIsNamed) {
  EXPECT_EQ(errorIn("version = \"1.0\";\nclients = (\n  oops\n);\n"),
            "r.wdm:3: syntax error\n"
            "      oops\n"
            "      ^\n");
}

TEST(Rules, OneVersionOfTheRulesIsKnown) {
  EXPECT_EQ(errorIn("clients = ();\nversion = \"2.0\";\n"),
            "r.wdm:2: version \"2.0\" is not known, only \"1.0\"\n"
            "    version = \"2.0\";\n"
            "    ^~~~~~~~~~~~~~~\n");
  EXPECT_EQ(errorIn("clients = ();\n"),
            "r.wdm:1: setting version is missing\n"
            "    clients = ();\n"
            "    ^\n");
  EXPECT_EQ(errorIn("version = 1.0;\nclients = ();\n"),
            "r.wdm:1: setting version is not a text in double quotes\n"
            "    version = 1.0;\n"
            "    ^~~~~~~\n");
}

TEST(Rules, AnEmptyRulesFileHasNoVersion) { EXPECT_EQ(errorIn(""), "r.wdm:1: setting version is missing\n"); }

TEST(Rules, ClientsAreAListOfGroups) {
  EXPECT_EQ(errorIn("version = \"1.0\";\n"),
            "r.wdm:1: setting clients is missing\n"
            "    version = \"1.0\";\n"
            "    ^\n");
  EXPECT_EQ(errorIn("version = \"1.0\";\nclients = \"none\";\n"),
            "r.wdm:2: setting clients is not a list in parentheses\n"
            "    clients = \"none\";\n"
            "    ^~~~~~~\n");
  EXPECT_EQ(errorIn("version = \"1.0\";\nclients = (\n\"kelvo\");\n"),
            "r.wdm:3: a client is not a group in braces\n"
            "    \"kelvo\");\n"
            "    ^\n");
}

TEST(Rules, ARuleNeedsAllItsTexts) {
  EXPECT_EQ(errorIn(rulesWith("{ context = \"a\"; xml_map = \"a\"; html_format = \"UserEnvStyle\"; }")),
            "r.wdm:3: setting html_map is missing\n"
            "    { context = \"a\"; xml_map = \"a\"; html_format = \"UserEnvStyle\"; }\n"
            "    ^\n");
}

TEST(Rules, TheHtmlFormatIsOneOfTwo) {
  EXPECT_EQ(
      errorIn(rulesWith("{ context = \"a\"; xml_map = \"a\"; html_map = \"a\";\nhtml_format = \"Plain\"; }")),
      "r.wdm:4: html_format \"Plain\" is not known\n"
      "    html_format = \"Plain\"; }\n"
      "    ^~~~~~~~~~~~~~~~~~~~~\n");
}

TEST(Rules, AContextHasOneRule) {
  const std::string rule =
      "{ context = \"a\"; xml_map = \"a\"; html_map = \"a\"; html_format = \"UserEnvStyle\"; }";
  EXPECT_EQ(errorIn(rulesWith(rule + ",\n" + rule)),
            "r.wdm:4: client \"c\" has another rule for context \"a\" already\n"
            "    " +
                rule +
                "\n"
                "      ^~~~~~~~~~~~~\n");
}

TEST(Rules, AClientMayHaveNoRules) { EXPECT_EQ(errorIn(rulesWith("")), "no error"); }

TEST(Rules, OtherFilesAreNotIncluded) {
  EXPECT_EQ(errorIn("version = \"1.0\";\n  @include \"/dev/zero\"\n"),
            "r.wdm:2: @include is not supported\n"
            "      @include \"/dev/zero\"\n"
            "      ^~~~~~~~\n");
}

TEST(Rules, AnIncludeInACommentOrATextIsNone) {
  const std::string rules = "version = \"1.0\"; clients = ();\n";
  EXPECT_EQ(errorIn("# \"\n/* it's \"one\n@include \"/dev/zero\"\n*/ " + rules), "no error");
  EXPECT_EQ(errorIn("// /*\n# @include\nnote = \"\\\"/*\n@include\n\";\n" + rules), "no error");
  EXPECT_EQ(errorIn("/* closed */ a = 1;\n\t@include \"x\"\n" + rules),
            "r.wdm:2: @include is not supported\n"
            "    \\x09@include \"x\"\n"
            "        ^~~~~~~~\n");
}

TEST(Rules, NothingHidesBehindANul) {
  EXPECT_EQ(errorIn(std::string("version = \"1.0\";\nclients = ();\n\0 nonsense", 41)),
            "r.wdm:3: the rules hold a NUL byte\n"
            "    \\x00 nonsense\n"
            "    ^~~~\n");
}

TEST(Rules, DeepNestingIsRefused) {
  EXPECT_NE(errorIn("version = \"1.0\";\nclients = " + std::string(100'000, '(') + "\n"), "no error");
}

}  // namespace
}  // namespace vestra::design_tool
