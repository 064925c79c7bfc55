#include "design_tool/design_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include <boost/filesystem/operations.hpp>

#include "support/files.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::writeFile;

/// A project in which the library has written the files of a report.
class DesignTool : public testing::Test {
 protected:
  DesignTool() {
    writeScript(scriptFile, script);
    writeFile(wdmFile, goldenIn(directory.path(), "usage_statistics_ext_kelvo.wdm"));
  }

  /// Runs to status 0; what it printed is in `out` and `err`.
  void run() { EXPECT_EQ(runDesignTool(scriptFile, directory / "outbox", "", out, err), 0) << err.str(); }

  /// What a run prints that fails and writes nothing.
  std::string failure() {
    const auto before = namesIn(vestra(""));
    err.str("");
    EXPECT_EQ(runDesignTool(scriptFile, directory / "outbox", "", out, err), 1);
    EXPECT_EQ(namesIn(vestra("")), before);
    EXPECT_FALSE(vestra_test::exists(directory / "outbox/0001-kelvo"));
    return err.str();
  }

  void insertLines(const std::string& lines) {
    writeScript(scriptFile, script.insert(script.find("vestra_transmit"), lines));
  }

  /// Lets the script name another file for one of its reports.
  void nameOutput(const std::string& output, const std::string& other) const {
    std::string changed = script;
    writeScript(scriptFile, changed.replace(changed.find(output), output.size(), other));
  }

  std::string vestra(const std::string& name) const { return directory / ("vestra/" + name); }

  const vestra_test::TemporaryDirectory directory;
  const std::string scriptFile = vestra("kelvo_vestra.tcl");
  const std::string wdmFile = vestra("usage_statistics_ext_kelvo.wdm");
  const std::string xmlFile = vestra("usage_statistics_ext_kelvo.xml");
  const std::string htmlFile = vestra("usage_statistics_ext_kelvo.html");
  std::string script = goldenIn(directory.path(), "kelvo_vestra.tcl");
  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(DesignTool, WritesBothReportsAndKeepsACopy) {
  writeFile(xmlFile, "old");
  run();
  EXPECT_EQ(err.str(), "");
  EXPECT_EQ(readFile(xmlFile), goldenIn(directory.path(), "usage_statistics_ext_kelvo.xml"));
  EXPECT_EQ(readFile(htmlFile), goldenIn(directory.path(), "usage_statistics_ext_kelvo.html"));
  const std::string folder = directory / "outbox/0001-kelvo";
  EXPECT_THAT(out.str(), HasSubstr("vestra-design-tool: kept a copy in " + folder + "\n"));
  EXPECT_THAT(namesIn(folder),
              ElementsAre("kelvo_vestra.tcl", "report.json", "usage_statistics_ext_kelvo.html",
                          "usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_kelvo.xml"));
  for (const std::string& name : namesIn(vestra(""))) {
    EXPECT_EQ(readFile(folder + "/" + name), readFile(vestra(name)));
  }
}

TEST_F(DesignTool, GoesOnAfterWarnings) {
  insertLines(addData("tavlo", "k", "C:\\temp", "tavlo\\\\usage"));
  run();
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

TEST_F(DesignTool, StopsWarningAfterTwentyWithACount) {
  std::string lines;
  for (int i = 0; i < 30; ++i) {
    lines += addData("kelvo", "k" + std::to_string(i), "\\t", "kelvo\\\\usage");
  }
  insertLines(lines);
  run();
  const std::string text = err.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 21);
  EXPECT_THAT(text, EndsWith("\n" + scriptFile + ": warning: and 11 more\n"));
}

TEST_F(DesignTool, WritesNothingForAWrongScriptOrWrongRules) {
  const std::string rules = readFile(wdmFile);
  writeFile(wdmFile, "version = \"1.0\";\nclients = 1\n;");
  EXPECT_EQ(failure(), wdmFile + ":2: setting clients is not a list in parentheses\n");

  std::remove(wdmFile.c_str());
  EXPECT_EQ(failure(), wdmFile + ": cannot be read: No such file or directory\n");
  writeFile(wdmFile, rules);
  writeFile(scriptFile, "vestra_terminate\n");
  EXPECT_EQ(failure(), scriptFile + ":1: vestra_terminate comes before vestra_init\n");
  std::remove(scriptFile.c_str());
  EXPECT_EQ(failure(), scriptFile + ": cannot be read: No such file or directory\n");
  EXPECT_EQ(out.str(), "");
}

TEST_F(DesignTool, WritesNothingWhenOneOfItsOutputsIsRefused) {
  boost::filesystem::create_hard_link(wdmFile, vestra("second_name"));
  boost::filesystem::create_directory(vestra("directory"));
  const std::string outside = "does not lie below the directory of vestra_init, \"" + vestra("") + "\"";
  struct Row {
    std::string output;
    std::string other;
    std::string error;
  };
  const Row rows[] = {
      {htmlFile, directory / "none/page.html", "cannot be written: No such file or directory"},
      {htmlFile, vestra("directory"), "is a directory, not a file"},
      {htmlFile, vestra("./usage_statistics_ext_kelvo.xml"), "is the XML report as well"},
      {htmlFile, xmlFile, "is the XML report as well"},
      {xmlFile, vestra("../vestra/kelvo_vestra.tcl"), "is the script itself"},
      {xmlFile, vestra("second_name"), "is the rules file"},
      {xmlFile, wdmFile, "is the rules file"},
      {htmlFile, directory / "page.html", outside},
      {htmlFile, "/dev/null", outside},
      {htmlFile, vestra("../p.html"), outside},
  };
  for (const Row& row : rows) {
    nameOutput(row.output, row.other);
    EXPECT_EQ(failure(), row.other + ": " + row.error + "\n");
  }
}

TEST_F(DesignTool, WritesNothingWhenTheOutboxCannotBeCreated) {
  writeFile(directory / "outbox", "a file");
  EXPECT_EQ(failure(), directory / "outbox: the outbox cannot be created: Not a directory\n");
}

}  // namespace
}  // namespace vestra::design_tool
