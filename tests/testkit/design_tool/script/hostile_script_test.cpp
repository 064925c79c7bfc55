#include <gtest/gtest.h>

#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

TEST(HostileScript, ReachesNothingOutside) {
  for (const std::string call :
       {"exec ls", "open /etc/passwd", "file exists /", "socket localhost 80", "exit 7",
        "source /etc/profile", "load /lib/x.so", "unload x", "interp create", "after 100000", "vwait forever",
        "glob *", "cd /", "pwd", "fconfigure stdout"}) {
    const std::string name = call.substr(0, call.find(' '));
    EXPECT_EQ(errorOf(call + "\n"), "1: invalid command name \"" + name + "\"");
  }
  EXPECT_EQ(errorOf("puts hello\n"), "1: can not find channel named \"stdout\"");
  EXPECT_EQ(errorOf("package require http\n"), "1: can't find package http");
  EXPECT_EQ(errorOf("catch {exec touch /tmp/x} message\nerror $message\n"),
            "2: invalid command name \"exec\"; a square bracket inside a value asks Tcl to run a command");
  EXPECT_EQ(errorOf("::tcl::file::exists /\n"), "1: not allowed to invoke subcommand exists of file");
  EXPECT_EQ(errorOf("set home $env(HOME)\n"),
            "1: can't read \"env(HOME)\": no such variable; a dollar sign inside a value asks Tcl for a "
            "variable");
}

TEST(HostileScript, CannotCatchAProtocolError) {
  EXPECT_EQ(errorOf("catch {vestra_terminate}\nvestra_init -vestra_dir /p\n"),
            "1: vestra_terminate comes before vestra_init");
  EXPECT_EQ(errorOf("catch {vestra_terminate}; vestra_init -vestra_dir /p\n"),
            "1: vestra_terminate comes before vestra_init");
}

TEST(HostileScript, CannotHideThatACommandIsRedefined) {
  EXPECT_EQ(errorOf("proc vestra_init args {}\nvestra_init -vestra_dir /p\n"),
            "2: the script ends without vestra_init");
}

TEST(HostileScript, EndsAtALimitThatItCannotCatch) {
  const std::pair<const char*, const char*> rows[] = {
      {"set i 0\nwhile 1 {incr i; set i}\n", "2: the script runs too many commands"},
      {"while 1 {catch {while 1 {set i 0}}}\n", "1: the script runs too many commands"},
      {"proc f {} {f}\nf\n", "2: too many nested evaluations (infinite loop?)"},
      {"set x [string repeat ab 2000000000]\n",
       "1: result exceeds max size for a Tcl value (2147483647 bytes)"},
  };
  for (const auto& [script, error] : rows) {
    EXPECT_EQ(errorOf(script, 100'000).substr(0, std::string(error).size()), error);
  }
  EXPECT_EQ(errorOf("catch {while 1 {}}\n", MOST_COMMANDS, 1), "1: the script runs for too long");
}

TEST(HostileScript, MayNestDeeply) {
  EXPECT_EQ(errorOf("expr " + std::string(1'000'000, '(') + "\n"),
            "1: unbalanced open paren in expression \"..." + std::string(22, '(') + "\"");
  EXPECT_EQ(errorOf(std::string(1'000'000, '{') + "\n"),
            "1: missing close-brace; a brace at the start of a key reaches the script as it is");
}

TEST(HostileScript, MayHaveAHugeValue) {
  std::string value;
  value.resize(16'000'000, 'x');
  EXPECT_EQ(evaluateScript("s.tcl", scriptAround(addData("kelvo", "k", value, "c"))).items[0].value, value);
}

}  // namespace
}  // namespace vestra::design_tool
