#include "design_tool/pages/text_report.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(TextReport, HasASectionForEachContextAndMarksHazards) {
  EXPECT_EQ(renderText({{"project", "user_environment", "os_name", "Linux", 2},
                        {"kelvo", "kelvo\\usage", "runs", "  ", 3},
                        {"project", "user_environment", "os", "\x1b[2J", 4}},
                       {{3, "of a kind"}}),
            "\n"
            "  user_environment (project)\n"
            "    os_name  Linux\n"
            "    os       \\x1b[2J\n"
            "\n"
            "  kelvo\\usage (kelvo)\n"
            "  ! runs     \\x20\\x20\n"
            "             (of a kind)\n");
}

}  // namespace
}  // namespace vestra::design_tool
