#include "testkit/design_tool/golden.h"

#include <gtest/gtest.h>

#include "design_tool/pages/html_page.h"
#include "design_tool/pages/xml_report.h"
#include "design_tool/rules/rules.h"
#include "design_tool/script/script_evaluation.h"

namespace vestra::design_tool {
namespace {

TEST(BothReports, AreTheAgreedOnes) {
  const Report report = evaluateScript("s.tcl", golden("kelvo_vestra.tcl"));
  const std::vector<Rule> rules = parseRules("r.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(renderXml(report, rules), golden("usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(renderHtml(report, rules), golden("usage_statistics_ext_kelvo.html"));
}

}  // namespace
}  // namespace vestra::design_tool
