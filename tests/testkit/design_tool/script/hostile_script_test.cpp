#include <gtest/gtest.h>

#include <thread>

#include "testkit/design_tool/script/error_text.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

/// Commands of the language that reach outside of it, or could keep it busy where no limit is looked at.
class OutOfReach : public testing::TestWithParam<const char*> {};

TEST_P(OutOfReach, ACommandThatReachesOutsideIsUnknown) {
  const std::string call = GetParam();
  const std::string name = call.substr(0, call.find(' '));
  EXPECT_EQ(errorOf(call + "\n"), "s.tcl:1: invalid command name \"" + name + "\"\n    " + call + "\n    ^" +
                                      std::string(name.size() - 1, '~') + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Commands, OutOfReach,
    testing::Values("exec ls", "open /etc/passwd", "file exists /", "socket localhost 80", "exit 7",
                    "source /etc/profile", "load /lib/x.so", "unload x", "interp create", "after 100000",
                    "vwait forever", "update", "package require http", "encoding system", "glob *", "cd /",
                    "pwd", "pid", "puts hello", "gets stdin", "read stdin", "close stdout", "chan names",
                    "fconfigure stdout", "flush stdout", "fileevent stdin r", "rename set put",
                    "namespace eval a b", "info commands", "trace add x", "coroutine c list", "yield",
                    "yieldto list", "apply x", "time x", "clock seconds", "regexp a b", "regsub a b c",
                    "switch a b", "zlib crc32 a", "oo::class create A", "auto_load x", "memory info",
                    "history", "::tcl::namespace::eval a b", "::tcl::info::commands", "::tcl::file::exists /",
                    "::tcl::unsupported::assemble x", "::tcl::clock::seconds", "::oo::class create A",
                    "::exec ls"));

TEST(HostileScript, AnInvokedHiddenCommandStaysHidden) {
  EXPECT_EQ(errorOf("catch {exec touch /tmp/x} message\nerror $message\n"),
            "s.tcl:2: invalid command name \"exec\"\n"
            "    error $message\n"
            "          ^~~~~~~~\n");
}

TEST(HostileScript, TheEnvironmentIsOutOfReach) {
  EXPECT_EQ(
      errorOf("set home $env(HOME)\n"),
      "s.tcl:1: can't read \"env(HOME)\": no such variable; a dollar sign inside a value asks Tcl for a "
      "variable\n"
      "    set home $env(HOME)\n"
      "             ^~~~~~~~~~\n");
}

TEST(HostileScript, TheToolsCommandsCannotBeRedefined) {
  EXPECT_EQ(errorOf("proc vestra_add_data args {}\n"),
            "s.tcl:1: vestra_add_data cannot be redefined\n"
            "    proc vestra_add_data args {}\n"
            "    ^~~~\n");
  EXPECT_EQ(errorOf("catch {proc ::vestra_init args {}}\n"),
            "s.tcl:1: vestra_init cannot be redefined\n"
            "    catch {proc ::vestra_init args {}}\n"
            "    ^~~~~\n");
}

TEST(HostileScript, AMisspeltCommandCannotBeHidden) {
  EXPECT_EQ(errorOf("proc unknown args {}\nvestra_ad_data -client kelvo\n"),
            "s.tcl:1: unknown cannot be redefined\n"
            "    proc unknown args {}\n"
            "    ^~~~\n");
  const Report report = evaluateScript("s.tcl", scriptAround("catch {vestra_ad_data -client kelvo}\n"));
  ASSERT_EQ(report.warnings.size(), 1u);
  EXPECT_EQ(report.warnings[0].line, 3u);
  EXPECT_EQ(report.warnings[0].message, "there is no command \"vestra_ad_data\"");
}

TEST(HostileScript, AProtocolErrorCannotBeCaught) {
  EXPECT_EQ(errorOf("catch {vestra_terminate}\nvestra_init -vestra_dir /p\n"),
            "s.tcl:1: vestra_terminate comes before vestra_init\n"
            "    catch {vestra_terminate}\n"
            "    ^~~~~\n");
}

TEST(HostileScript, AnEndlessLoopIsStoppedByTheTime) {
  EXPECT_EQ(errorOf("while 1 {}\n", {20'000'000, std::chrono::milliseconds(100)}),
            "s.tcl:1: the command has run for more than 0.1 s of processor time\n"
            "    while 1 {}\n"
            "    ^~~~~\n");
}

TEST(HostileScript, TimeThatTheProcessorDoesNotWorkIsNotCounted) {
  const auto blockLikeABusyMachine = [](std::size_t) {
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
  };
  EXPECT_NO_THROW(evaluateScript("s.tcl", scriptAround("set i 0\nwhile {$i < 100} {incr i}\n"),
                                 {20'000'000, std::chrono::milliseconds(50)}, blockLikeABusyMachine));
}

TEST(HostileScript, AnEndlessLoopIsStoppedByTheNumberOfCommands) {
  EXPECT_EQ(errorOf("set i 0\nwhile 1 {incr i; set i}\n", {100'000, std::chrono::seconds(60)}),
            "s.tcl:2: the script has run more than 100000 commands\n"
            "    while 1 {incr i; set i}\n"
            "    ^~~~~\n");
}

TEST(HostileScript, ALimitCannotBeCaught) {
  EXPECT_EQ(errorOf("while 1 {catch {while 1 {set i 0}}}\n", {100'000, std::chrono::seconds(60)}),
            "s.tcl:1: the script has run more than 100000 commands\n"
            "    while 1 {catch {while 1 {set i 0}}}\n"
            "    ^~~~~\n");
}

TEST(HostileScript, EndlessRecursionIsStopped) {
  EXPECT_EQ(errorOf("proc f {} {f}\nf\n"),
            "s.tcl:2: too many nested evaluations (infinite loop?)\n"
            "    f\n"
            "    ^\n");
}

TEST(HostileScript, DeepBracketsAreRefused) {
  EXPECT_EQ(errorOf("set a 1\nset b " + std::string(100'000, '[') + "\n"),
            "s.tcl:2: square brackets are nested more than 1000 deep\n"
            "    ..." +
                std::string(120, '[') + "...\n" + "    " + std::string(63, ' ') + "^\n");
}

TEST(HostileScript, EscapedAndBalancedBracketsAreFine) {
  std::string lines;
  for (int i = 0; i < 1500; ++i) {
    lines += "set a \\[\nset b [set a]\n";
  }
  EXPECT_EQ(errorOf(scriptAround(lines)), "no error");
}

TEST(HostileScript, DeepParenthesesAndBracesAreRefused) {
  EXPECT_EQ(errorOf("expr " + std::string(1'000'000, '(') + "\n"),
            "s.tcl:1: unbalanced open paren in expression \"..." + std::string(22, '(') + "\"\n    expr " +
                std::string(115, '(') + "...\n    ^~~~\n");
  EXPECT_EQ(errorOf(std::string(1'000'000, '{') + "\n"),
            "s.tcl:1: missing close-brace; a brace at the start of a key reaches the script as it is\n    " +
                std::string(120, '{') + "...\n    ^\n");
}

TEST(HostileScript, ATextLargerThanTheInterpreterHoldsIsRefused) {
  EXPECT_EQ(errorOf("set x [string repeat ab 2000000000]\n"),
            "s.tcl:1: result exceeds max size for a Tcl value (2147483647 bytes)\n"
            "    set x [string repeat ab 2000000000]\n"
            "          ^~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST(HostileScript, AScriptLargerThanTheInterpreterHoldsIsRefused) {
  Limits limits;
  limits.bytes = 10;
  EXPECT_EQ(errorOf("set i 0\n#a\n", limits), "s.tcl: the script is too large for the interpreter\n");
  EXPECT_EQ(errorOf("set i 0\n#\n", limits), "s.tcl:2: the script ends without vestra_init\n");
}

TEST(HostileScript, AHugeValuePasses) {
  std::string value;
  value.resize(16'000'000, 'x');
  const Report report = evaluateScript("s.tcl", scriptAround(addData("kelvo", "k", value, "c")));
  EXPECT_EQ(report.items[0].value, value);
}

}  // namespace
}  // namespace vestra::design_tool
