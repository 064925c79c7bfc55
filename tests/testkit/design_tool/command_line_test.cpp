#include "design_tool/command_line.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

RunRequest runRequest(const std::vector<std::string>& arguments, const char* defaultOutbox = nullptr) {
  const Request request = readCommandLine(arguments, defaultOutbox);
  EXPECT_TRUE(std::holds_alternative<RunRequest>(request));
  const RunRequest* const run = std::get_if<RunRequest>(&request);
  return run == nullptr ? RunRequest{} : *run;
}

std::string errorFor(const std::vector<std::string>& arguments) {
  const Request request = readCommandLine(arguments, nullptr);
  const UsageError* const error = std::get_if<UsageError>(&request);
  return error == nullptr ? "no error" : error->message;
}

TEST(CommandLine, TheRealToolsWordsAreUnderstood) {
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "/p/vestra/s.tcl", "-notrace"}).source,
            "/p/vestra/s.tcl");
}

TEST(CommandLine, TheOrderIsFreeAndNotraceMayBeLeftOut) {
  EXPECT_EQ(runRequest({"-source", "s.tcl", "-mode", "batch"}).source, "s.tcl");
}

TEST(CommandLine, TheOutboxComesFromTheCommandLineOrElseFromTheEnvironment) {
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "s"}).outbox, "");
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "s"}, "/env").outbox, "/env");
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "s"}, "").outbox, "");
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "s", "--outbox", "/given"}, "/env").outbox, "/given");
}

TEST(CommandLine, AValueMayLookLikeAnOption) {
  EXPECT_EQ(runRequest({"-mode", "batch", "-source", "-notrace"}).source, "-notrace");
}

TEST(CommandLine, HelpAndVersionWinOverWhatIsMissing) {
  EXPECT_TRUE(std::holds_alternative<HelpRequest>(readCommandLine({"-mode", "batch", "--help"}, nullptr)));
  EXPECT_TRUE(std::holds_alternative<VersionRequest>(readCommandLine({"--version"}, nullptr)));
}

TEST(CommandLine, AScriptIsShownByItself) {
  EXPECT_EQ(std::get<ShowRequest>(readCommandLine({"--show", "s.tcl"}, "/env")).script, "s.tcl");
  EXPECT_EQ(errorFor({"--show", "s.tcl", "-mode", "batch"}), "--show goes with nothing else");
}

TEST(CommandLine, AnErrorOfTheCommandLineIsNamed) {
  EXPECT_EQ(errorFor({}), "-mode is missing");
  EXPECT_EQ(errorFor({"-mode", "batch"}), "-source is missing");
  EXPECT_EQ(errorFor({"-mode", "gui", "-source", "s"}), "there is no mode \"gui\", only \"batch\"");
  EXPECT_EQ(errorFor({"-mode", "batch", "-source"}), "-source needs a value");
  EXPECT_EQ(errorFor({"-mode", "batch", "-mode", "batch", "-source", "s"}), "-mode is given twice");
  EXPECT_EQ(errorFor({"-mode", "batch", "-source", "/home/u/my", "project/s.tcl"}),
            "unexpected argument \"project/s.tcl\"");
}

TEST(CommandLine, AUsageErrorShowsTheUsage) {
  EXPECT_EQ(usageText({"-mode is missing"}),
            "vestra-design-tool: -mode is missing\n"
            "Usage: vestra-design-tool -mode batch -source FILE [-notrace] [--outbox DIR]\n"
            "       vestra-design-tool --show FILE\n"
            "Try --help.\n");
}

}  // namespace
}  // namespace vestra::design_tool
