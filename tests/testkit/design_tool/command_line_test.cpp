#include "design_tool/command_line.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, NamesTheActionAndItsScript) {
  const std::pair<Words, Request> rows[] = {
      {{"-mode", "batch", "-source", "/p/s.tcl", "-notrace"}, {Action::Run, "/p/s.tcl"}},
      {{"-source", "s", "-mode", "batch"}, {Action::Run, "s"}},
      {{"-mode", "batch", "-source", "-notrace"}, {Action::Run, "-notrace"}},
      {{"-mode", "batch", "--help"}, {Action::Help, ""}},
      {{"--version"}, {Action::Version, ""}},
      {{"--show", "s.tcl"}, {Action::Show, "s.tcl"}},
      {{"--json", "s.tcl"}, {Action::PrintRecord, "s.tcl"}},
  };
  for (const auto& [arguments, wanted] : rows) {
    const Request request = readCommandLine(arguments);
    EXPECT_EQ(request.action, wanted.action) << testing::PrintToString(arguments);
    EXPECT_EQ(request.script, wanted.script);
  }
}

TEST(CommandLine, NamesItsError) {
  const std::pair<Words, const char*> rows[] = {
      {{}, "-mode is missing"},
      {{"-mode", "batch"}, "-source is missing"},
      {{"-mode", "gui", "-source", "s"}, "there is no mode \"gui\", only \"batch\""},
      {{"-mode", "batch", "-source"}, "-source needs a value"},
      {{"-mode", "batch", "-mode", "batch", "-source", "s"}, "-mode is given twice"},
      {{"-mode", "batch", "-source", "my", "project/s.tcl"}, "unexpected argument \"project/s.tcl\""},
      {{"--show", "s.tcl", "-mode", "batch"}, "unexpected argument \"--show\""},
  };
  for (const auto& [arguments, message] : rows) {
    try {
      readCommandLine(arguments);
      ADD_FAILURE() << "no error: " << testing::PrintToString(arguments);
    } catch (const UsageError& error) {
      EXPECT_STREQ(error.what(), message);
    }
  }
}

}  // namespace
}  // namespace vestra::design_tool
