#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <boost/algorithm/hex.hpp>
#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>

#include "sanitizers.h"
#include "support/files.h"
#include "support/process.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using vestra_test::namesIn;
using vestra_test::Outcome;
using vestra_test::readFile;
using vestra_test::writeFile;

const std::vector<std::string> RUN{"-mode", "batch", "-source", "vestra/kelvo_vestra.tcl", "-notrace"};

/// The program itself, in a project in which the library has written the files of a report; relative paths
/// are against the project.
class DesignTool : public testing::Test {
 protected:
  DesignTool() {
    writeScript(scriptFile, script);
    writeFile(wdmFile, golden("usage_statistics_ext_kelvo.wdm"));
  }

  Outcome start(const std::vector<std::string>& arguments) const {
    std::vector<std::string> words{VESTRA_DESIGN_TOOL};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return vestra_test::run(words, {"VESTRA_OUTBOX=outbox"}, directory.path());
  }

  /// With shell syntax after the arguments, and before the program.
  Outcome startInShell(const std::string& arguments, const std::string& before = "") const {
    return vestra_test::run({"sh", "-c", before + VESTRA_DESIGN_TOOL " " + arguments}, {}, directory.path());
  }

  /// What a run prints that fails and writes nothing.
  std::string failure() const {
    const auto before = namesIn(vestra(""));
    const Outcome outcome = start(RUN);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(namesIn(vestra("")), before);
    EXPECT_FALSE(vestra_test::exists(directory / "outbox/0001-kelvo"));
    return outcome.err;
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
};

TEST_F(DesignTool, WritesBothReportsAndKeepsACopy) {
  writeFile(xmlFile, "old");
  const Outcome outcome = start(RUN);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            "vestra-design-tool: read 30 items from vestra/kelvo_vestra.tcl\n"
            "vestra-design-tool: read 4 rules from " +
                wdmFile +
                "\n"
                "vestra-design-tool: kept a copy in outbox/0001-kelvo\n"
                "vestra-design-tool: wrote " +
                xmlFile + "\n" + "vestra-design-tool: wrote " + htmlFile +
                "\nvestra-design-tool: report 1742439171 is complete; nothing was transmitted\n");
  EXPECT_EQ(readFile(xmlFile), goldenIn(directory.path(), "usage_statistics_ext_kelvo.xml"));
  const std::string folder = directory / "outbox/0001-kelvo";
  EXPECT_THAT(namesIn(folder),
              ElementsAre("kelvo_vestra.tcl", "report.json", "usage_statistics_ext_kelvo.html",
                          "usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_kelvo.xml"));
  for (const std::string& name : namesIn(vestra(""))) {
    EXPECT_EQ(readFile(folder + "/" + name), readFile(vestra(name)));
  }
}

TEST_F(DesignTool, LinksToThePageAboutPrivacy) {
  ASSERT_EQ(start(RUN).status, 0);
  const std::string page = readFile(htmlFile);
  const std::size_t link = page.find("file://") + 7;
  const std::string privacy = readFile(page.substr(link, page.find('"', link) - link));
  EXPECT_THAT(privacy, HasSubstr("<h1 id=\"what-is-reported-about-you\">What is reported about you</h1>\n"));
  EXPECT_THAT(privacy, HasSubstr("<a href=\"#stop-it\">stop it</a>"));
  EXPECT_THAT(privacy, HasSubstr("<h2 id=\"stop-it\">Stop it</h2>\n<p>"));
  EXPECT_THAT(privacy, HasSubstr("<pre><code>vestra-inspect status my_project\n</code></pre>\n"));
  EXPECT_THAT(privacy,
              HasSubstr("<tr><td>a registration identifier</td><td>the support library</td><td></td></tr>"));
  EXPECT_THAT(privacy, HasSubstr("<li>It opens no network connection.</li>\n"));
  for (const char* markdown : {"<!--", "\n|", "\n#", "```", "**", "]("}) {
    EXPECT_EQ(privacy.find(markdown, privacy.find("<main>")), std::string::npos) << markdown;
  }
}

TEST_F(DesignTool, GoesOnAfterWarnings) {
  insertLines(addData("tavlo", "k", "C:\\temp", "tavlo\\\\usage"));
  const std::string file = "vestra/kelvo_vestra.tcl";
  const Outcome outcome = start(RUN);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            file + ":35: warning: Tcl has changed the value: \"C:\\temp\" became \"C:\\x09emp\"\n" + file +
                ":35: warning: client \"tavlo\" has data but was never registered\n" + file +
                ":35: warning: context \"tavlo\\usage\" of client \"tavlo\" has no rule\n" + file +
                ":36: warning: -clientid 1742439171 is not the checksum of what is reported: 3545860679 is "
                "expected of a script of 2026-11-21 08:00\n");
  EXPECT_THAT(readFile(directory / "outbox/0001-kelvo/report.json"),
              HasSubstr(file + ":35: warning: client \\\"tavlo\\\" has data but was never registered\""));
}

TEST_F(DesignTool, StopsWarningAfterTwentyWithACount) {
  std::string lines;
  for (int i = 0; i < 30; ++i) {
    lines += addData("kelvo", "k" + std::to_string(i), "\\t", "kelvo\\\\usage");
  }
  insertLines(lines);
  const std::string text = start(RUN).err;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 21);
  EXPECT_THAT(text, EndsWith("\nvestra/kelvo_vestra.tcl: warning: and 11 more\n"));
}

TEST_F(DesignTool, WritesNothingForAWrongScriptOrWrongRules) {
  const std::string rules = readFile(wdmFile);
  writeFile(wdmFile, "version = \"1.0\";\nclients = 1\n;");
  EXPECT_EQ(failure(), wdmFile + ":2: setting clients is not a list in parentheses\n");
  std::remove(wdmFile.c_str());
  EXPECT_EQ(failure(), wdmFile + ": cannot be read: No such file or directory\n");
  writeFile(wdmFile, rules);
  writeFile(scriptFile, "vestra_terminate\n");
  EXPECT_EQ(failure(), "vestra/kelvo_vestra.tcl:1: vestra_terminate comes before vestra_init\n");
  std::remove(scriptFile.c_str());
  EXPECT_EQ(failure(), "vestra/kelvo_vestra.tcl: cannot be read: No such file or directory\n");
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
  EXPECT_EQ(failure(), "outbox: the outbox cannot be created: Not a directory\n");
}

TEST_F(DesignTool, ReadsThePathsOfTheScriptAgainstItsWorkingDirectory) {
  writeFile(directory / "r.wdm", "version = \"1.0\"; clients = ();");
  writeFile(scriptFile,
            "vestra_init -vestra_dir .\n"
            "vestra_transmit -clientid 1 -regid R -xml r.xml -html r.html -wdm r.wdm -intro I\n"
            "vestra_terminate\n");
  const Outcome outcome = start(RUN);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("outbox", "r.html", "r.wdm", "r.xml", "vestra"));
}

TEST_F(DesignTool, PrintsTheRecordOfTheOutbox) {
  insertLines(addData("kelvo", "raw", harmlessBytes(), "kelvo\\\\usage"));
  const Outcome json = start({"--json", RUN[3]});
  EXPECT_EQ(json.status, 0);
  EXPECT_EQ(json.err, "");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("vestra"));
  ASSERT_EQ(start(RUN).status, 0);
  EXPECT_EQ(json.out, readFile(directory / "outbox/0001-kelvo/report.json"));
  EXPECT_EQ(nlohmann::json::parse(json.out)["items"].back()["value"]["hex"],
            boost::algorithm::hex_lower(harmlessBytes()));
}

TEST_F(DesignTool, ShowsAScriptAndWritesNothing) {
  const Outcome outcome = start({"--show", RUN[3]});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("\n  kelvo\\usage (kelvo)\n"));
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("vestra"));
  EXPECT_THAT(namesIn(directory / "vestra"),
              ElementsAre("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(DesignTool, ShowsWhatCanBeReadOfACorruptScript) {
  writeFile(directory / "bad.tcl", "vestra_init -vestra_dir /p/vestra/\n" +
                                       addData("kelvo", "before", "C:\\temp", "kelvo\\\\usage") +
                                       addData("kelvo", "damage", "a\"b", "kelvo\\\\usage") +
                                       addData("kelvo", "behind", "  ", "kelvo\\\\usage"));
  const Outcome outcome = start({"--show", "bad.tcl"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            "Corrupt script; its items as they were written:\n"
            "\n"
            "  kelvo\\usage (kelvo)\n"
            "  ! before  C:\\temp\n"
            "            (the value holds a backslash, which changes what follows it)\n"
            "  ! damage  a\"b\n"
            "            (the value holds a double quote, which ends it)\n"
            "    behind  \\x20\\x20\n");
  EXPECT_THAT(outcome.err, StartsWith("bad.tcl:3: extra characters after close-quote; "));
}

TEST_F(DesignTool, EndsWithStatusOneWhenItsOutputCannotBeWritten) {
  for (const std::string arguments :
       {"-mode batch -source vestra/kelvo_vestra.tcl", "--show vestra/kelvo_vestra.tcl",
        "--json vestra/kelvo_vestra.tcl", "--help", "--version"}) {
    for (const std::string redirection : {" >/dev/full", " >&-"}) {
      const Outcome outcome = startInShell(arguments + redirection);
      EXPECT_EQ(outcome.status, 1) << arguments << redirection;
      EXPECT_EQ(outcome.err, "vestra-design-tool: standard output cannot be written\n");
    }
  }
  EXPECT_THAT(readFile(xmlFile), StartsWith("<?xml"));
}

TEST_F(DesignTool, AnswersForHelpAndVersion) {
  const Outcome help = start({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, StartsWith("Usage: vestra-design-tool -mode batch -source FILE [-notrace]\n"));
  EXPECT_EQ(start({"--version"}).out, "vestra-design-tool 1.0.0, a stand-in for the main design tool\n");
}

TEST_F(DesignTool, EndsWithStatusTwoForAnInvalidCommandLine) {
  const Outcome outcome = start({"-mode", "batch"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "vestra-design-tool: -source is missing\n"
            "Usage: vestra-design-tool -mode batch -source FILE [-notrace]\n"
            "       vestra-design-tool --show FILE | --json FILE\n"
            "Try --help.\n");
}

TEST_F(DesignTool, StopsAScriptAtALimitOfTheSystem) {
  writeFile(directory / "bad.tcl", "while 1 {}\n");
  // The shell's status of a child that SIGXCPU has ended.
  EXPECT_EQ(startInShell("-mode batch -source bad.tcl; exit $?", "ulimit -St 1;").status, 128 + SIGXCPU);
  if (!HAS_ADDRESS_SANITIZER && !HAS_THREAD_SANITIZER) {
    writeFile(directory / "bad.tcl", "set x ab; while 1 {append x $x}\n");
    const Outcome outcome = startInShell("-mode batch -source bad.tcl", "ulimit -Sv 300000;");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "bad.tcl: the script takes too much memory\n");
  }
}

TEST_F(DesignTool, PassesALargeReport) {
  // VESTRA_SWEEP=full makes it ten times as large.
  const int count = std::getenv("VESTRA_SWEEP") == nullptr || HAS_ADDRESS_SANITIZER ? 20'000 : 200'000;
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += addData("kelvo", "k" + std::to_string(i), "value", "kelvo\\\\usage");
  }
  insertLines(lines);
  const Outcome outcome = start(RUN);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out,
              StartsWith("vestra-design-tool: read " + std::to_string(count + 30) + " items from "));
  EXPECT_THAT(outcome.err, HasSubstr(" is not the checksum of what is reported: "));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
}

}  // namespace
}  // namespace vestra::design_tool
