#include "design_tool/pages/report_record.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

Report sample() {
  Report report;
  report.vestraDir = std::string("/p\0/", 4);
  report.registrations = {{"project", 2}, {"kelvo", 4}};
  report.sections = {{"kelvo", "kelvo\\usage"}, {"kelvo", "other"}};
  report.items = {{0, "runs", "caf\xC3\xA9", 5}, {1, "raw", std::string("\0\xFF", 2), 6}};
  report.transmission = {3600604488u, "R", "/p/x", "/p/h", "/p/w", "I", 7};
  return report;
}

TEST(ReportRecord, TheRecordHoldsAllOfTheReport) {
  EXPECT_EQ(renderRecord(sample(), {{"kelvo", "kelvo\\usage", "x", "h", HtmlStyle::Statistics}},
                         {"s.tcl:6: warning: w"}),
            R"({
  "client_id": "3600604488",
  "registration_id": "R",
  "intro": "I",
  "vestra_dir": "/p\u0000/",
  "xml": "/p/x",
  "html": "/p/h",
  "wdm": "/p/w",
  "clients": [
    "project",
    "kelvo"
  ],
  "items": [
    {
      "client": "kelvo",
      "key": "runs",
      "value": "café",
      "context": "kelvo\\usage",
      "line": 5,
      "section_rule": true
    },
    {
      "client": "kelvo",
      "key": "raw",
      "value": {
        "hex": "00ff"
      },
      "context": "other",
      "line": 6,
      "section_rule": false
    }
  ],
  "rules": [
    {
      "client": "kelvo",
      "context": "kelvo\\usage",
      "xml_map": "x",
      "html_map": "h",
      "html_format": "FennoxStatsStyle"
    }
  ],
  "warnings": [
    "s.tcl:6: warning: w"
  ]
}
)");
}

}  // namespace
}  // namespace vestra::design_tool
