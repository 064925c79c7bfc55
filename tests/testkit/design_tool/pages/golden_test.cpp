#include "testkit/design_tool/golden.h"

#include <gtest/gtest.h>

#include "design_tool/pages/html_page.h"
#include "design_tool/pages/xml_report.h"
#include "design_tool/rules/rules.h"
#include "design_tool/script/script_evaluation.h"

namespace vestra::design_tool {
namespace {

class BothReports : public testing::TestWithParam<std::string> {
 protected:
  std::string page(const std::string& extension) const {
    return "usage_statistics_ext_" + GetParam() + extension;
  }

  const Report report = evaluateScript("s.tcl", golden(GetParam() + "_vestra.tcl"));
  const std::vector<Rule> rules = parseRules("r.wdm", golden(page(".wdm")));
};

TEST_P(BothReports, TheXmlReportIsTheAgreedOne) { EXPECT_EQ(renderXml(report, rules), golden(page(".xml"))); }

TEST_P(BothReports, TheHtmlReportIsTheAgreedOne) {
  EXPECT_EQ(renderHtml(report, rules), golden(page(".html")));
}

INSTANTIATE_TEST_SUITE_P(BothProducts, BothReports, testing::Values("kelvo", "tavlo"),
                         [](const auto& product) { return product.param; });

}  // namespace
}  // namespace vestra::design_tool
