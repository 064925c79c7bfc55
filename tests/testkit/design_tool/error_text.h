#pragma once

#include <string>

#include "diagnostic.h"
#include "script_evaluation.h"

namespace vestra::design_tool {

/// What the tool prints when the script `s.tcl` fails; "no error" when it doesn't.
inline std::string errorOf(const std::string& script, const Limits& limits = {}) {
  try {
    evaluateScript("s.tcl", script, limits);
    return "no error";
  } catch (const DiagnosedError& error) {
    return format(error.diagnostic());
  }
}

}  // namespace vestra::design_tool
