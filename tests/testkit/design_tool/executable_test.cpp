#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include <nlohmann/json.hpp>

#include "support/files.h"
#include "support/process.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/golden.h"
#include "testkit/design_tool/sanitizers.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using vestra_test::namesIn;
using vestra_test::Outcome;
using vestra_test::readFile;
using vestra_test::writeFile;

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

  Outcome startOn(const std::string& script) const {
    writeFile(directory / "vestra/s.tcl", script);
    return start({"-mode", "batch", "-source", "vestra/s.tcl", "-notrace"});
  }

  const vestra_test::TemporaryDirectory directory;
};

TEST_F(Executable, TheToolRunsAsTheRealOneIsStarted) {
  const Outcome outcome = start({"-mode", "batch", "-source", "vestra/s.tcl", "-notrace"});
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

TEST_F(Executable, PathsInTheScriptAreAgainstTheWorkingDirectory) {
  writeFile(directory / "r.wdm", "version = \"1.0\"; clients = ();");
  const Outcome outcome = startOn(
      "vestra_init -vestra_dir .\n"
      "vestra_transmit -clientid 1 -regid R -xml r.xml -html r.html -wdm r.wdm -intro I\n"
      "vestra_terminate\n");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "vestra-design-tool: read 0 items from vestra/s.tcl\n"
            "vestra-design-tool: read 0 rules from r.wdm\n"
            "vestra-design-tool: wrote r.xml\n"
            "vestra-design-tool: wrote r.html\n"
            "vestra-design-tool: report 1 is complete; nothing was transmitted\n");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("r.html", "r.wdm", "r.xml", "vestra"));
}

TEST_F(Executable, TheOutboxIsTakenFromTheCommandLineOrTheEnvironment) {
  EXPECT_EQ(
      start({"-mode", "batch", "-source", "vestra/s.tcl"}, {"VESTRA_OUTBOX=" + (directory / "a")}).status, 0);
  EXPECT_THAT(namesIn(directory / "a"), ElementsAre("0001-kelvo"));
  EXPECT_EQ(start({"-mode", "batch", "-source", "vestra/s.tcl", "--outbox", "b"},
                  {"VESTRA_OUTBOX=" + (directory / "a")})
                .status,
            0);
  EXPECT_THAT(namesIn(directory / "a"), ElementsAre("0001-kelvo"));
  EXPECT_THAT(namesIn(directory / "b"), ElementsAre("0001-kelvo"));
}

TEST_F(Executable, EveryByteReachesTheRecord) {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    if (std::string("\"\\$[").find(static_cast<char>(value)) == std::string::npos) {
      bytes += static_cast<char>(value);
    }
  }
  std::string script = readFile(directory / "vestra/s.tcl");
  script.insert(script.find("vestra_transmit"), addData("kelvo", "bytes", bytes, "kelvo\\\\usage"));
  writeFile(directory / "vestra/s.tcl", script);
  const Outcome outcome = start({"-mode", "batch", "-source", "vestra/s.tcl", "--outbox", "o"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  std::string hex;
  for (const char byte : bytes) {
    const char* const digits = "0123456789abcdef";
    hex += digits[static_cast<unsigned char>(byte) >> 4];
    hex += digits[static_cast<unsigned char>(byte) & 15];
  }
  const auto record = nlohmann::json::parse(readFile(directory / "o/0001-kelvo/report.json"));
  EXPECT_EQ(record["items"].back()["value"]["hex"], hex);
  EXPECT_EQ(readFile(directory / "o/0001-kelvo/s.tcl"), script);
}

TEST_F(Executable, AScriptIsShownAndNothingIsWritten) {
  const Outcome outcome = start({"--show", "vestra/s.tcl"}, {"VESTRA_OUTBOX=" + (directory / "o")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, testing::HasSubstr("\n  kelvo\\usage (kelvo)\n"));
  EXPECT_EQ(outcome.err, "");
  EXPECT_FALSE(vestra_test::exists(directory / "vestra/usage_statistics_ext_kelvo.xml"));
  EXPECT_FALSE(vestra_test::exists(directory / "o"));
  writeFile(directory / "bad.tcl", "exec true\n");
  EXPECT_EQ(start({"--show", "bad.tcl"}).status, 1);
  EXPECT_EQ(start({"--show", "bad.tcl"}).err,
            "bad.tcl:1: invalid command name \"exec\"\n"
            "    exec true\n"
            "    ^~~~\n");
}

TEST_F(Executable, AnAnswerThatCannotBeWrittenIsAnError) {
  for (const char* answer : {"--show vestra/s.tcl", "--help", "--version"}) {
    const std::string command = VESTRA_DESIGN_TOOL " " + std::string(answer) + " >/dev/full";
    const Outcome outcome = vestra_test::run({"sh", "-c", command}, {}, directory.path());
    EXPECT_EQ(outcome.status, 1) << answer;
    EXPECT_EQ(outcome.err, "vestra-design-tool: standard output cannot be written\n") << answer;
  }
}

TEST_F(Executable, ADamagedScriptIsShownAsFarAsItCanBeRead) {
  writeFile(directory / "bad.tcl", "vestra_init -vestra_dir /p/vestra/\n" +
                                       addData("kelvo", "before", "C:\\temp", "kelvo\\\\usage") +
                                       addData("kelvo", "damage", "a\"b", "kelvo\\\\usage") +
                                       addData("kelvo", "behind", "  ", "kelvo\\\\usage"));
  const Outcome outcome = start({"--show", "bad.tcl"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            "Damaged script; what can be read of it:\n"
            "\n"
            "  kelvo\\usage (kelvo)\n"
            "  ! before  C:\\x09emp\n"
            "            (the value holds a backslash, which changes what follows it)\n"
            "  ! damage  a\"b\n"
            "            (the value holds a double quote, which ends it)\n"
            "    behind  \\x20\\x20\n");
  EXPECT_THAT(outcome.err, StartsWith("bad.tcl:3: extra characters after close-quote; "));
}

TEST_F(Executable, HelpAndVersionAreAnswered) {
  const Outcome help = start({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out,
              StartsWith("Usage: vestra-design-tool -mode batch -source FILE [-notrace] [--outbox DIR]\n"));
  EXPECT_EQ(help.err, "");
  const Outcome version = start({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "vestra-design-tool 1.0.0, a stand-in for the main design tool\n");
}

TEST_F(Executable, AWrongCommandLineIsAUsageError) {
  const Outcome outcome = start({"-mode", "batch"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "vestra-design-tool: -source is missing\n"
            "Usage: vestra-design-tool -mode batch -source FILE [-notrace] [--outbox DIR]\n"
            "       vestra-design-tool --show FILE\n"
            "Try --help.\n");
}

TEST_F(Executable, AnErrorInTheScriptIsStatusOne) {
  const Outcome outcome = startOn("vestra_init -vestra_dir /p\nexec touch hacked\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "vestra/s.tcl:2: invalid command name \"exec\"\n"
            "    exec touch hacked\n"
            "    ^~~~\n");
  EXPECT_THAT(namesIn(directory.path()), ElementsAre("vestra"));
}

TEST_F(Executable, AnInterpreterThatDiesIsReportedWithItsLine) {
  if (IS_SANITIZED) {
    GTEST_SKIP() << "the sanitizer reports an exhausted stack before the system does";
  }
  const Outcome outcome = startOn(
      "set x {}\nset i 0\n"
      "while {$i < 1000000} {set x [list $x]; incr i}\n"
      "string length $x\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "vestra/s.tcl:4: the script has brought the interpreter down (Segmentation fault)\n");
}

TEST_F(Executable, ALargeReportPasses) {
  // VESTRA_SWEEP=full makes it as large as any that was ever seen.
  const int count = std::getenv("VESTRA_SWEEP") == nullptr || IS_SANITIZED ? 20'000 : 200'000;
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
