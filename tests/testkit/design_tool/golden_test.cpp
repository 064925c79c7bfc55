#include <gtest/gtest.h>

#include "golden.h"
#include "html_page.h"
#include "rules.h"
#include "script_evaluation.h"
#include "xml_report.h"

namespace vestra::design_tool {
namespace {

class BothReports : public testing::TestWithParam<std::string> {
 protected:
  std::string page(const std::string& extension) const {
    return "usage_statistics_ext_" + GetParam() + extension;
  }

  const Report report_ = evaluateScript("s.tcl", golden(GetParam() + "_vestra.tcl"));
  const std::vector<Rule> rules_ = parseRules("r.wdm", golden(page(".wdm")));
};

TEST_P(BothReports, TheXmlReportIsTheAgreedOne) {
  EXPECT_EQ(renderXml(report_, rules_), golden(page(".xml")));
}

TEST_P(BothReports, TheHtmlReportIsTheAgreedOne) {
  EXPECT_EQ(renderHtml(report_, rules_), golden(page(".html")));
}

INSTANTIATE_TEST_SUITE_P(OfBothProducts, BothReports, testing::Values("kelvo", "tavlo"),
                         [](const auto& product) { return product.param; });

}  // namespace
}  // namespace vestra::design_tool
