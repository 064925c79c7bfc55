#include "design_tool/report/report.h"

#include <gtest/gtest.h>

#include <tuple>

namespace vestra::design_tool {
namespace {

TEST(Report, HasTheTitleAndTheProductOfItsIntro) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"<H3>TAVLO Usage Report</H3><BR>", "TAVLO Usage Report", "tavlo"},
      {"KELVO Usage Report", "KELVO Usage Report", "kelvo"},
      // Without a product, the first client that is not "project".
      {"", "", "client"},
      {"<H3>I</H3><BR>", "I", "client"},
      {" Usage Report", " Usage Report", "client"},
      // Another frame is no frame.
      {"<H3>open", "<H3>open", "client"},
      {"<H3>a</H3><BR></H3><BR>", "<H3>a</H3><BR></H3><BR>", "client"},
  };
  for (const auto& [intro, title, product] : rows) {
    Report report;
    report.transmission.intro = intro;
    report.registrations = {{"project", 2}, {"client", 3}};
    EXPECT_EQ(titleOf(report), title);
    EXPECT_EQ(productOf(report), product) << intro;
  }
  EXPECT_EQ(productOf(Report()), "");
}

}  // namespace
}  // namespace vestra::design_tool
