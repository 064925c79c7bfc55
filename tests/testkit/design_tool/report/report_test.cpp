#include "design_tool/report/report.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

Report reportWithIntro(const std::string& intro) {
  Report report;
  report.transmission.intro = intro;
  report.registrations = {{"project", 2}, {"kelvo", 3}};
  return report;
}

TEST(ReportProduct, AnIntroNamesTheProductWhateverItsClientsAre) {
  EXPECT_EQ(productOf(reportWithIntro("<H3>TAVLO Usage Report</H3><BR>")), "tavlo");
  EXPECT_EQ(productOf(reportWithIntro("KELVO Usage Report")), "kelvo");
}

TEST(ReportProduct, ClientsNameTheProductWhereTheIntroDoesNot) {
  for (const char* intro : {"", "<H3>I</H3>", " Usage Report", "<H3> Usage Report"}) {
    EXPECT_EQ(productOf(reportWithIntro(intro)), "kelvo");
  }
  EXPECT_EQ(productOf(Report()), "");
}

}  // namespace
}  // namespace vestra::design_tool
