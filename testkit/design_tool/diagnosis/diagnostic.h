#ifndef VESTRA_DESIGN_TOOL_DIAGNOSTIC_H
#define VESTRA_DESIGN_TOOL_DIAGNOSTIC_H

#include <cstddef>
#include <stdexcept>
#include <string>

#include "reading/visible_text.h"

namespace vestra::design_tool {

/// Thrown where the run cannot go on. `what` is `FILE:LINE: message`, in the form that editors can follow.
class DiagnosedError : public std::runtime_error {
 public:
  /// @param line counted from 1
  DiagnosedError(const std::string& file, std::size_t line, const std::string& message)
      : DiagnosedError(file + ":" + std::to_string(line), message) {}

  /// About a file as a whole: `FILE: message`.
  DiagnosedError(const std::string& place, const std::string& message)
      : runtime_error(reading::forTerminal(place) + ": " + message) {}
};

}  // namespace vestra::design_tool

#endif
