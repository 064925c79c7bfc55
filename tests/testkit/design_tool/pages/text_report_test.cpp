#include "design_tool/pages/text_report.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(TextReport, EachContextHasASectionWithColumnsForKeysAndValues) {
  Report report;
  report.transmission.clientId = 17;
  report.transmission.registrationId = "REG";
  report.sections = {{"project", "user_environment"}, {"kelvo", "kelvo\\usage"}};
  report.items = {{0, "os_name", "Linux", 2}, {1, "runs", "2", 3}, {0, "os", "\x1b[2J", 4}};
  EXPECT_EQ(renderText(report),
            "Report 17, registration \"REG\"\n"
            "\n"
            "  user_environment (project)\n"
            "    os_name  Linux\n"
            "    os       \\x1b[2J\n"
            "\n"
            "  kelvo\\usage (kelvo)\n"
            "    runs     2\n");
}

}  // namespace

}  // namespace vestra::design_tool
