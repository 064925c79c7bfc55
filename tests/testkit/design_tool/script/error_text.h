#ifndef VESTRA_TESTS_DESIGN_TOOL_ERROR_TEXT_H
#define VESTRA_TESTS_DESIGN_TOOL_ERROR_TEXT_H

#include <string>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/script_evaluation.h"

namespace vestra::design_tool {

/// What the tool prints when the script `s.tcl` fails; "no error" when it does not.
inline std::string errorOf(const std::string& script, const Limits& limits = {}) {
  try {
    evaluateScript("s.tcl", script, limits);
    return "no error";
  } catch (const DiagnosedError& error) {
    return format(error.diagnostic());
  }
}

}  // namespace vestra::design_tool

#endif
