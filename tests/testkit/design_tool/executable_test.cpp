#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include <boost/algorithm/hex.hpp>
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
using testing::HasSubstr;
using testing::StartsWith;
using vestra_test::namesIn;
using vestra_test::Outcome;
using vestra_test::readFile;
using vestra_test::writeFile;

const std::vector<std::string> RUN{"-mode", "batch", "-source", "vestra/s.tcl", "-notrace"};

/// The program itself, in a project of its own; relative paths are against the project.
class Executable : public testing::Test {
 protected:
  Executable() {
    writeScript(directory / "vestra/s.tcl", goldenIn(directory.path(), "kelvo_vestra.tcl"));
    writeFile(directory / "vestra/usage_statistics_ext_kelvo.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  }

  Outcome start(const std::vector<std::string>& arguments,
                const std::vector<std::string>& environment = {}) const {
    std::vector<std::string> words{VESTRA_DESIGN_TOOL};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return vestra_test::run(words, environment, directory.path());
  }

  /// With shell syntax after the arguments, and before the program.
  Outcome startInShell(const std::string& arguments, const std::string& before = "") const {
    return vestra_test::run({"sh", "-c", before + VESTRA_DESIGN_TOOL " " + arguments}, {}, directory.path());
  }

  Outcome startOn(const std::string& script) const {
    writeFile(directory / "vestra/s.tcl", script);
    return start(RUN);
  }

  const vestra_test::TemporaryDirectory directory;
};

TEST_F(Executable, SaysWhatItHasReadAndWritten) {
  const Outcome outcome = start(RUN);
  EXPECT_EQ(outcome.status, 0);
  const std::string vestra = directory / "vestra/usage_statistics_ext_kelvo";
  EXPECT_EQ(outcome.out,
            "vestra-design-tool: read 26 items from vestra/s.tcl\n"
            "vestra-design-tool: read 4 rules from " +
                vestra + ".wdm\n" + "vestra-design-tool: wrote " + vestra + ".xml\n" +
                "vestra-design-tool: wrote " + vestra + ".html\n" +
                "vestra-design-tool: report 3466800949 is complete; nothing was transmitted\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Executable, LinksToThePageAboutPrivacy) {
  ASSERT_EQ(start(RUN).status, 0);
  const std::string page = readFile(directory / "vestra/usage_statistics_ext_kelvo.html");
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

TEST_F(Executable, ReadsThePathsOfTheScriptAgainstItsWorkingDirectory) {
  writeFile(directory / "r.wdm", "version = \"1.0\"; clients = ();");
  const Outcome outcome = startOn(
      "vestra_init -vestra_dir .\n"
      "vestra_transmit -clientid 1 -regid R -xml r.xml -html r.html -wdm r.wdm -intro I\n"
      "vestra_terminate\n");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("r.html", "r.wdm", "r.xml", "vestra"));
}

TEST_F(Executable, PrintsTheRecordOfTheOutbox) {
  std::string script = readFile(directory / "vestra/s.tcl");
  script.insert(script.find("vestra_transmit"), addData("kelvo", "bytes", harmlessBytes(), "kelvo\\\\usage"));
  writeFile(directory / "vestra/s.tcl", script);
  const Outcome json = start({"--json", "vestra/s.tcl"});
  EXPECT_EQ(json.status, 0);
  EXPECT_EQ(json.err, "");
  EXPECT_THAT(namesIn(directory / "vestra"), ElementsAre("s.tcl", "usage_statistics_ext_kelvo.wdm"));
  ASSERT_EQ(start(RUN, {"VESTRA_OUTBOX=o"}).status, 0);
  EXPECT_EQ(json.out, readFile(directory / "o/0001-kelvo/report.json"));
  EXPECT_EQ(nlohmann::json::parse(json.out)["items"].back()["value"]["hex"],
            boost::algorithm::hex_lower(harmlessBytes()));
}

TEST_F(Executable, ShowsAScriptAndWritesNothing) {
  const Outcome outcome = start({"--show", "vestra/s.tcl"}, {"VESTRA_OUTBOX=" + (directory / "o")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("\n  kelvo\\usage (kelvo)\n"));
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("vestra"));
  EXPECT_THAT(namesIn(directory / "vestra"), ElementsAre("s.tcl", "usage_statistics_ext_kelvo.wdm"));
}

TEST_F(Executable, ShowsWhatCanBeReadOfACorruptScript) {
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

TEST_F(Executable, EndsWithStatusOneWhenItsOutputCannotBeWritten) {
  for (const std::string arguments : {"-mode batch -source vestra/s.tcl", "--show vestra/s.tcl",
                                      "--json vestra/s.tcl", "--help", "--version"}) {
    for (const std::string redirection : {" >/dev/full", " >&-"}) {
      const Outcome outcome = startInShell(arguments + redirection);
      EXPECT_EQ(outcome.status, 1) << arguments << redirection;
      EXPECT_EQ(outcome.err, "vestra-design-tool: standard output cannot be written\n");
    }
  }
  EXPECT_THAT(readFile(directory / "vestra/usage_statistics_ext_kelvo.xml"), StartsWith("<?xml"));
}

TEST_F(Executable, AnswersForHelpAndVersion) {
  const Outcome help = start({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, StartsWith("Usage: vestra-design-tool -mode batch -source FILE [-notrace]\n"));
  EXPECT_EQ(start({"--version"}).out, "vestra-design-tool 1.0.0, a stand-in for the main design tool\n");
}

TEST_F(Executable, EndsWithStatusTwoForAnInvalidCommandLine) {
  const Outcome outcome = start({"-mode", "batch"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "vestra-design-tool: -source is missing\n"
            "Usage: vestra-design-tool -mode batch -source FILE [-notrace]\n"
            "       vestra-design-tool --show FILE | --json FILE\n"
            "Try --help.\n");
}

TEST_F(Executable, StopsAScriptAtALimitOfTheSystem) {
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

TEST_F(Executable, PassesALargeReport) {
  // VESTRA_SWEEP=full makes it as large as any that was ever seen.
  const int count = std::getenv("VESTRA_SWEEP") == nullptr || HAS_ADDRESS_SANITIZER ? 20'000 : 200'000;
  std::string script = goldenIn(directory.path(), "kelvo_vestra.tcl");
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += addData("kelvo", "k" + std::to_string(i), "value", "kelvo\\\\usage");
  }
  const Outcome outcome = startOn(script.insert(script.find("vestra_transmit"), lines));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out,
              StartsWith("vestra-design-tool: read " + std::to_string(count + 26) + " items from "));
  EXPECT_THAT(outcome.err, HasSubstr(" is not the checksum of what is reported: "));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
}

}  // namespace
}  // namespace vestra::design_tool
