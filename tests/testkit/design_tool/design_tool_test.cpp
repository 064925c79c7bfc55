#include "design_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "golden.h"
#include "script_text.h"
#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::writeFile;

/// A project in which the library has written the files of a report.
class DesignTool : public testing::Test {
 protected:
  DesignTool() {
    writeFile(script_, goldenIn(directory_.path(), "kelvo_vestra.tcl"));
    writeFile(wdm_, goldenIn(directory_.path(), "usage_statistics_ext_kelvo.wdm"));
  }

  int start(const std::string& outbox = "") { return runDesignTool({script_, outbox}, out_, err_); }

  std::string vestra(const std::string& name) const { return directory_ / ("vestra/" + name); }

  const vestra_test::TemporaryDirectory directory_;
  const std::string script_ = vestra("kelvo_vestra.tcl");
  const std::string wdm_ = vestra("usage_statistics_ext_kelvo.wdm");
  const std::string xml_ = vestra("usage_statistics_ext_kelvo.xml");
  const std::string html_ = vestra("usage_statistics_ext_kelvo.html");
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(DesignTool, WritesBothReportsAndSaysSo) {
  EXPECT_EQ(start(), 0);
  EXPECT_EQ(readFile(xml_), goldenIn(directory_.path(), "usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(readFile(html_), goldenIn(directory_.path(), "usage_statistics_ext_kelvo.html"));
  EXPECT_EQ(out_.str(), "vestra-design-tool: read 26 items from " + script_ + "\n" +
                            "vestra-design-tool: read 4 rules from " + wdm_ + "\n" +
                            "vestra-design-tool: wrote " + xml_ + "\n" + "vestra-design-tool: wrote " +
                            html_ + "\n" +
                            "vestra-design-tool: report 3600604488 is complete; nothing was transmitted\n");
  EXPECT_EQ(err_.str(), "");
}

TEST_F(DesignTool, KeepsACopyInTheOutbox) {
  EXPECT_EQ(start(directory_ / "outbox"), 0);
  const std::string folder = directory_ / "outbox/0001-kelvo";
  EXPECT_THAT(namesIn(folder),
              ElementsAre("kelvo_vestra.tcl", "report.json", "usage_statistics_ext_kelvo.html",
                          "usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(readFile(folder + "/kelvo_vestra.tcl"), readFile(script_));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.wdm"), readFile(wdm_));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.xml"), readFile(xml_));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.html"), readFile(html_));
  EXPECT_THAT(out_.str(), HasSubstr("vestra-design-tool: kept a copy in " + folder + "\n"));
}

TEST_F(DesignTool, WarnsAndGoesOn) {
  std::string script = readFile(script_);
  script.insert(script.find("vestra_transmit"), addData("tavlo", "k", "C:\\temp", "tavlo\\\\usage"));
  writeFile(script_, script);
  EXPECT_EQ(start(directory_ / "outbox"), 0);
  EXPECT_EQ(err_.str(),
            script_ + ":30: warning: Tcl has changed the value: \"C:\\temp\" became \"C:\\x09emp\"\n" +
                script_ + ":30: warning: client \"tavlo\" has data but was never registered\n" + script_ +
                ":30: warning: context \"tavlo\\usage\" of client \"tavlo\" has no rule\n");
  EXPECT_THAT(readFile(directory_ / "outbox/0001-kelvo/report.json"),
              HasSubstr(script_ + ":30: warning: client \\\"tavlo\\\" has data but was never registered\""));
}

TEST_F(DesignTool, WritesNothingWhenTheScriptIsWrong) {
  writeFile(script_, "vestra_terminate\n");
  EXPECT_EQ(start(directory_ / "outbox"), 1);
  EXPECT_EQ(out_.str(), "");
  EXPECT_EQ(err_.str(), script_ + ":1: vestra_terminate comes before vestra_init\n" +
                            "    vestra_terminate\n"
                            "    ^~~~~~~~~~~~~~~~\n");
  EXPECT_THAT(namesIn(directory_.path()), ElementsAre("vestra"));
  EXPECT_THAT(namesIn(directory_ / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, WritesNothingWhenTheRulesAreWrong) {
  writeFile(wdm_, "version = \"1.0\";\nclients = 1\n;");
  EXPECT_EQ(start(directory_ / "outbox"), 1);
  EXPECT_EQ(err_.str(), wdm_ + ":2: setting clients is not a list in parentheses\n" +
                            "    clients = 1\n"
                            "    ^\n");
  EXPECT_THAT(namesIn(directory_.path()), ElementsAre("vestra"));
  EXPECT_THAT(namesIn(directory_ / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, WritesNothingWhenOneReportCantBeWritten) {
  std::string script = goldenIn(directory_.path(), "kelvo_vestra.tcl");
  script.replace(script.find(html_), html_.size(), directory_ / "none/page.html");
  writeFile(script_, script);
  EXPECT_EQ(start(directory_ / "outbox"), 1);
  EXPECT_EQ(err_.str(), directory_ / "none/page.html: can't be written: No such file or directory\n");
  EXPECT_THAT(namesIn(directory_.path()), ElementsAre("vestra"));
  EXPECT_THAT(namesIn(directory_ / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, WritesNoReportWhenTheOutboxCantBeWritten) {
  writeFile(directory_ / "outbox", "a file");
  EXPECT_EQ(start(directory_ / "outbox"), 1);
  EXPECT_EQ(err_.str(), directory_ / "outbox: the outbox can't be made: Not a directory\n");
  EXPECT_THAT(namesIn(directory_ / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, AMissingScriptOrRulesFileIsNamed) {
  std::ostringstream err;
  EXPECT_EQ(runDesignTool({vestra("none.tcl"), ""}, out_, err), 1);
  EXPECT_EQ(err.str(), vestra("none.tcl") + ": can't be read: No such file or directory\n");
  std::remove(wdm_.c_str());
  EXPECT_EQ(start(), 1);
  EXPECT_EQ(err_.str(), wdm_ + ": can't be read: No such file or directory\n");
}

}  // namespace
}  // namespace vestra::design_tool
