#include "design_tool/report/report.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(Report, HasTheTitleOfItsIntro) {
  const std::pair<const char*, const char*> rows[] = {
      {"<H3>TAVLO Usage Report</H3><BR>", "TAVLO Usage Report"},
      {"KELVO Usage Report", "KELVO Usage Report"},
      {"", ""},
      // Another frame is no frame.
      {"<H3>open", "<H3>open"},
      {"<H3>a</H3><BR></H3><BR>", "<H3>a</H3><BR></H3><BR>"},
  };
  for (const auto& [intro, title] : rows) {
    Report report;
    report.transmission.intro = intro;
    EXPECT_EQ(titleOf(report), title);
  }
}

TEST(Report, HasTheProductThatIsRegistered) {
  Report report;
  EXPECT_EQ(productOf(report), "");
  report.registrations = {{"project", 2}, {"client", 3}};
  EXPECT_EQ(productOf(report), "client");
}

}  // namespace
}  // namespace vestra::design_tool
