#include "design_tool/design_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include <boost/filesystem/operations.hpp>

#include "support/files.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/script/script_text.h"

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
    writeScript(scriptFile, goldenIn(directory.path(), "kelvo_vestra.tcl"));
    writeFile(wdmFile, goldenIn(directory.path(), "usage_statistics_ext_kelvo.wdm"));
  }

  int start(const std::string& outbox = "") { return runDesignTool({scriptFile, outbox}, out, err); }

  /// Lets the script name another file for one of its reports.
  void nameOutput(const std::string& output, const std::string& other) const {
    std::string script = goldenIn(directory.path(), "kelvo_vestra.tcl");
    writeScript(scriptFile, script.replace(script.find(output), output.size(), other));
  }

  void expectNothingWritten() const {
    EXPECT_THAT(namesIn(vestra("")), ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
    EXPECT_FALSE(vestra_test::exists(directory / "outbox") && !namesIn(directory / "outbox").empty());
  }

  std::string vestra(const std::string& name) const { return directory / ("vestra/" + name); }

  const vestra_test::TemporaryDirectory directory;
  const std::string scriptFile = vestra("kelvo_vestra.tcl");
  const std::string wdmFile = vestra("usage_statistics_ext_kelvo.wdm");
  const std::string xmlFile = vestra("usage_statistics_ext_kelvo.xml");
  const std::string htmlFile = vestra("usage_statistics_ext_kelvo.html");
  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(DesignTool, ARunWritesBothReportsAndSaysSo) {
  EXPECT_EQ(start(), 0);
  EXPECT_EQ(readFile(xmlFile), goldenIn(directory.path(), "usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(readFile(htmlFile), goldenIn(directory.path(), "usage_statistics_ext_kelvo.html"));
  EXPECT_EQ(out.str(), "vestra-design-tool: read 26 items from " + scriptFile + "\n" +
                           "vestra-design-tool: read 4 rules from " + wdmFile + "\n" +
                           "vestra-design-tool: wrote " + xmlFile + "\n" + "vestra-design-tool: wrote " +
                           htmlFile + "\n" +
                           "vestra-design-tool: report 3466800949 is complete; nothing was transmitted\n");
  EXPECT_EQ(err.str(), "");
}

TEST_F(DesignTool, ARunKeepsACopyInTheOutbox) {
  EXPECT_EQ(start(directory / "outbox"), 0);
  const std::string folder = directory / "outbox/0001-kelvo";
  EXPECT_THAT(namesIn(folder),
              ElementsAre("kelvo_vestra.tcl", "report.json", "usage_statistics_ext_kelvo.html",
                          "usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(readFile(folder + "/kelvo_vestra.tcl"), readFile(scriptFile));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.wdm"), readFile(wdmFile));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.xml"), readFile(xmlFile));
  EXPECT_EQ(readFile(folder + "/usage_statistics_ext_kelvo.html"), readFile(htmlFile));
  EXPECT_THAT(out.str(), HasSubstr("vestra-design-tool: kept a copy in " + folder + "\n"));
}

TEST_F(DesignTool, AWarningDoesNotEndTheRun) {
  std::string script = readFile(scriptFile);
  script.insert(script.find("vestra_transmit"), addData("tavlo", "k", "C:\\temp", "tavlo\\\\usage"));
  writeScript(scriptFile, script);
  EXPECT_EQ(start(directory / "outbox"), 0);
  EXPECT_EQ(err.str(),
            scriptFile + ":30: warning: Tcl has changed the value: \"C:\\temp\" became \"C:\\x09emp\"\n" +
                scriptFile + ":30: warning: client \"tavlo\" has data but was never registered\n" +
                scriptFile + ":30: warning: context \"tavlo\\usage\" of client \"tavlo\" has no rule\n" +
                scriptFile +
                ":31: warning: -clientid 3466800949 is not the checksum of what is reported: 2793106123 is "
                "expected of a script of 2026-11-21 08:00\n");
  EXPECT_THAT(
      readFile(directory / "outbox/0001-kelvo/report.json"),
      HasSubstr(scriptFile + ":30: warning: client \\\"tavlo\\\" has data but was never registered\""));
}

TEST_F(DesignTool, ALabToolsReportIsKeptAsTavloWhateverItRegisters) {
  std::string script = goldenIn(directory.path(), "tavlo_vestra.tcl");
  script.insert(script.find("vestra_transmit"), "vestra_register_client -client kelvo\n");
  writeScript(scriptFile, script);
  writeFile(vestra("usage_statistics_ext_tavlo.wdm"),
            goldenIn(directory.path(), "usage_statistics_ext_tavlo.wdm"));
  EXPECT_EQ(start(directory / "outbox"), 0);
  EXPECT_THAT(namesIn(directory / "outbox"), ElementsAre("0001-tavlo"));
}

TEST_F(DesignTool, AValueThatAddsACommandIsWarnedOf) {
  std::string script = readFile(scriptFile);
  const std::string own = "-value \"true\"";
  const std::string value =
      "true\" -context \"kelvo\\\\usage\"; vestra_add_data -client kelvo -key fake -value \"1";
  writeScript(scriptFile, script.replace(script.find(own), own.size(), "-value \"" + value + "\""));
  EXPECT_EQ(start(), 0);
  EXPECT_THAT(err.str(),
              HasSubstr(": warning: the value of key \"runall\" ends its command and adds 1 more\n"));
}

TEST_F(DesignTool, WarningsStopAfterTwentyWithACount) {
  std::string script = readFile(scriptFile);
  std::string lines;
  for (int i = 0; i < 30; ++i) {
    lines += "vestra_register_client -client kelvo\n";
  }
  writeScript(scriptFile, script.insert(script.find("vestra_transmit"), lines));
  EXPECT_EQ(start(), 0);
  const std::string text = err.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 21);
  EXPECT_THAT(text, testing::EndsWith("\n" + scriptFile + ": warning: and 11 more\n"));
}

TEST_F(DesignTool, AWrongScriptHasNothingWritten) {
  writeFile(scriptFile, "vestra_terminate\n");
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(err.str(), scriptFile + ":1: vestra_terminate comes before vestra_init\n" +
                           "    vestra_terminate\n"
                           "    ^~~~~~~~~~~~~~~~\n");
  expectNothingWritten();
}

TEST_F(DesignTool, WrongRulesHaveNothingWritten) {
  writeFile(wdmFile, "version = \"1.0\";\nclients = 1\n;");
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), wdmFile + ":2: setting clients is not a list in parentheses\n" +
                           "    clients = 1\n"
                           "    ^~~~~~~\n");
  expectNothingWritten();
}

TEST_F(DesignTool, AReportThatCannotBeWrittenHasNothingWritten) {
  const std::string page = directory / "none/page.html";
  nameOutput(htmlFile, page);
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), page + ": cannot be written: No such file or directory\n");
  expectNothingWritten();
}

TEST_F(DesignTool, ADirectoryInThePlaceOfAPageHasNothingWritten) {
  boost::filesystem::create_directory(htmlFile);
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), htmlFile + ": is a directory, not a file\n");
  boost::filesystem::remove(htmlFile);
  expectNothingWritten();
}

TEST_F(DesignTool, AnOutboxThatIsFullOfItselfHasNothingWritten) {
  boost::filesystem::create_directories(directory / "outbox");
  // The report's own record has this name too.
  const std::string page = vestra("report.json");
  nameOutput(htmlFile, page);
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), directory / "outbox: the outbox cannot keep two files named \"report.json\"\n");
  expectNothingWritten();
}

TEST_F(DesignTool, OneFileIsNotTakenForTwoWhateverPathLeadsThere) {
  nameOutput(htmlFile, vestra("./usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), vestra("./usage_statistics_ext_kelvo.xml") + ": is the XML report as well\n");
  expectNothingWritten();
}

TEST_F(DesignTool, TheScriptAndTheRulesAreNotOverwritten) {
  nameOutput(xmlFile, vestra("../vestra/kelvo_vestra.tcl"));
  EXPECT_EQ(start(), 1);
  EXPECT_EQ(err.str(), vestra("../vestra/kelvo_vestra.tcl") + ": is the script itself\n");
  boost::filesystem::create_hard_link(wdmFile, vestra("second_name"));
  nameOutput(xmlFile, vestra("second_name"));
  err.str("");
  EXPECT_EQ(start(), 1);
  EXPECT_EQ(err.str(), vestra("second_name") + ": is the rules file\n");
  boost::filesystem::remove(vestra("second_name"));
  expectNothingWritten();
}

TEST_F(DesignTool, NoOutputLeavesTheDirectoryOfTheReport) {
  const std::string root = ": does not lie below the directory of vestra_init, \"" + vestra("") + "\"\n";
  for (const std::string& outside :
       {directory / "page.html", std::string("/dev/null"), vestra("../p.html")}) {
    nameOutput(htmlFile, outside);
    err.str("");
    EXPECT_EQ(start(directory / "outbox"), 1);
    EXPECT_EQ(err.str(), outside + root);
    expectNothingWritten();
  }
}

TEST_F(DesignTool, AnOutboxThatCannotBeWrittenHasNoReportWritten) {
  writeFile(directory / "outbox", "a file");
  EXPECT_EQ(start(directory / "outbox"), 1);
  EXPECT_EQ(err.str(), directory / "outbox: the outbox cannot be made: Not a directory\n");
  EXPECT_THAT(namesIn(directory / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, AMissingScriptOrRulesFileIsNamed) {
  std::ostringstream unread;
  EXPECT_EQ(runDesignTool({vestra("none.tcl"), ""}, out, unread), 1);
  EXPECT_EQ(unread.str(), vestra("none.tcl") + ": cannot be read: No such file or directory\n");
  std::remove(wdmFile.c_str());
  EXPECT_EQ(start(), 1);
  EXPECT_EQ(err.str(), wdmFile + ": cannot be read: No such file or directory\n");
}

}  // namespace
}  // namespace vestra::design_tool
