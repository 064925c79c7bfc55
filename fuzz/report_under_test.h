#ifndef VESTRA_FUZZ_REPORT_UNDER_TEST_H
#define VESTRA_FUZZ_REPORT_UNDER_TEST_H

#include <optional>
#include <string>
#include <vector>

#include <vestra/vestra.h>

#include "design_tool/report/report.h"

namespace vestra_fuzz {

struct Item {
  std::string key;
  std::string value;
  Oza::Vestra::SectionType section;
};

/// The simulator's script of these items and this environment text.
std::string scriptOf(const std::vector<Item>& items, const std::string& environment);

/// What the stand-in design tool reads in a script, in a real interpreter that stops
/// a script which goes on for long; nothing when it refuses the script.
std::optional<vestra::design_tool::Report> reportOf(const std::string& script);

/// Whether Tcl reads the text as it stands, as a bare word and between quotes.
bool isPlain(const std::string& text);

}  // namespace vestra_fuzz

#endif
