#ifndef VESTRA_DESIGN_TOOL_SCRIPT_H
#define VESTRA_DESIGN_TOOL_SCRIPT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "design_tool/diagnosis/diagnostic.h"
#include "reading/tcl_command.h"

namespace vestra::design_tool {

using reading::Span;

/// A report script: its name and its text as the interpreter sees it. Knows which line a position stands on.
class Script {
 public:
  /// @param file  the name used in messages
  /// @param bytes the script's content, any bytes
  Script(std::string file, std::string_view bytes);

  const std::string& file() const { return name; }
  const std::string& text() const { return tclText; }

  /// The bytes that a stretch stands for.
  std::string bytesOf(Span span) const;

  /// The line, counted from 1, on which `position` stands. Takes time in proportion to the distance from the
  /// position asked for last, so that asking from the start to the end costs one pass.
  std::size_t lineOf(std::size_t position) const;

  /// The number of the last line that holds anything; 1 for an empty script.
  std::size_t lastLine() const;

  /// The trouble described, with the line and the marker that belong to `span`.
  Diagnostic diagnose(Span span, std::string message) const;

 private:
  std::string name;
  std::string tclText;
  mutable std::size_t countedTo = 0;
  mutable std::size_t countedLine = 1;
};

}  // namespace vestra::design_tool

#endif
