#ifndef VESTRA_DESIGN_TOOL_DIAGNOSTIC_H
#define VESTRA_DESIGN_TOOL_DIAGNOSTIC_H

#include <cstddef>
#include <exception>
#include <string>
#include <utility>

namespace vestra::design_tool {

/// What is wrong and where, in the form that compilers use and editors can follow.
struct Diagnostic {
  /// The file as the user named it.
  std::string file;
  /// Counted from 1; 0 when it is the file as a whole.
  std::size_t line = 0;
  std::string message;
  /// The line's own bytes; nothing is shown when it is empty.
  std::string excerpt;
  /// Where the trouble begins in the excerpt, and how many bytes it takes. A width of 0 sets a single mark.
  std::size_t column = 0;
  std::size_t width = 0;
};

/// `FILE:LINE: what is wrong`, and below it the line with a marker underneath. Each line ends in a line feed.
/// A long line is shown around the marker only; bytes that a terminal cannot show are named.
std::string format(const Diagnostic& diagnostic);

/// Thrown where the run cannot go on.
class DiagnosedError : public std::exception {
 public:
  explicit DiagnosedError(Diagnostic diagnostic) : details(std::move(diagnostic)) {}
  /// About a file as a whole.
  DiagnosedError(std::string file, std::string message)
      : details{std::move(file), 0, std::move(message), "", 0, 0} {}

  const Diagnostic& diagnostic() const noexcept { return details; }
  const char* what() const noexcept override { return details.message.c_str(); }

 private:
  Diagnostic details;
};

}  // namespace vestra::design_tool

#endif
