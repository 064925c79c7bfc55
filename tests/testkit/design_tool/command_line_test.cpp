#include "design_tool/command_line.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

using Words = std::vector<std::string>;

struct Valid {
  Words arguments;
  const char* defaultOutbox;
  Request request;
};

TEST(CommandLine, NamesTheActionItsScriptAndItsOutbox) {
  const Valid rows[] = {
      {{"-mode", "batch", "-source", "/p/s.tcl", "-notrace"}, nullptr, {Action::Run, "/p/s.tcl", ""}},
      {{"-source", "s", "-mode", "batch"}, "/env", {Action::Run, "s", "/env"}},
      {{"-mode", "batch", "-source", "s"}, "", {Action::Run, "s", ""}},
      {{"-mode", "batch", "-source", "s", "--outbox", "/given"}, "/env", {Action::Run, "s", "/given"}},
      {{"-mode", "batch", "-source", "-notrace"}, nullptr, {Action::Run, "-notrace", ""}},
      {{"-mode", "batch", "--help"}, nullptr, {Action::Help, "", ""}},
      {{"--version"}, nullptr, {Action::Version, "", ""}},
      {{"--show", "s.tcl"}, "/env", {Action::Show, "s.tcl", ""}},
      {{"--json", "s.tcl"}, "/env", {Action::PrintRecord, "s.tcl", ""}},
  };
  for (const Valid& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    const Request request = readCommandLine(row.arguments, row.defaultOutbox);
    EXPECT_EQ(request.action, row.request.action);
    EXPECT_EQ(request.script, row.request.script);
    EXPECT_EQ(request.outbox, row.request.outbox);
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
      {{"--show", "s.tcl", "-mode", "batch"}, "--show goes with nothing else"},
      {{"--json", "s.tcl", "--show", "s.tcl"}, "--show goes with nothing else"},
  };
  for (const auto& [arguments, message] : rows) {
    try {
      readCommandLine(arguments, nullptr);
      ADD_FAILURE() << "no error: " << testing::PrintToString(arguments);
    } catch (const UsageError& error) {
      EXPECT_STREQ(error.what(), message);
    }
  }
}

}  // namespace
}  // namespace vestra::design_tool
