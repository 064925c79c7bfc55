#include "design_tool/diagnosis/diagnostic.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(Diagnostic, NamesThePlaceAndMarksIt) {
  const std::pair<Diagnostic, std::string> rows[] = {
      {{"s.tcl", 7, "unknown word", "set colour red", 4, 6},
       "s.tcl:7: unknown word\n    set colour red\n        ^~~~~~\n"},
      {{"s.tcl", 0, "is a directory", "", 0, 0}, "s.tcl: is a directory\n"},
      {{"a\x1B[2J", 0, "m", "", 0, 0}, "a\\x1b[2J: m\n"},
      // Without a width, and beyond the line.
      {{"s", 1, "m", "abc", 3, 0}, "s:1: m\n    abc\n       ^\n"},
      {{"s", 1, "m", "abc", 9, 5}, "s:1: m\n    abc\n       ^\n"},
      // Characters as they are shown.
      {{"s", 1, "m", "caf\xC3\xA9 \x1B x", 8, 1}, "s:1: m\n    caf\xC3\xA9 \\x1b x\n              ^\n"},
      // Of a long line, what is around the mark.
      {{"s", 1, "m", std::string(100, 'a') + "HERE" + std::string(100, 'b'), 100, 4},
       "s:1: m\n    ..." + std::string(60, 'a') + "HERE" + std::string(56, 'b') + "...\n" +
           std::string(67, ' ') + "^~~~\n"},
  };
  for (const auto& [diagnostic, text] : rows) {
    EXPECT_EQ(format(diagnostic), text);
  }
}

}  // namespace
}  // namespace vestra::design_tool
