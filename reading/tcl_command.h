#ifndef VESTRA_READING_TCL_COMMAND_H
#define VESTRA_READING_TCL_COMMAND_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vestra::reading {

/// A stretch of a text, by position.
struct Span {
  std::size_t begin = 0;
  std::size_t length = 0;
};

/// One word of a command, before any substitution.
struct TclWord {
  /// As it stands in the text, quotes and braces included.
  Span span;
  /// The same without them.
  Span content;
  /// Whether the command gets the content as it stands here.
  bool isLiteral = false;
  /// Whether the value of a variable is put in.
  bool readsVariable = false;
  /// Whether the result of a command is put in.
  bool runsCommand = false;
  /// Whether it becomes any number of arguments.
  bool isExpanded = false;
};

/// One command, taken apart but not run.
struct TclCommand {
  /// Where the next command may begin.
  std::size_t end() const { return span.begin + span.length; }

  /// The whole command with what ends it, without comments and blank lines before it.
  Span span;
  /// None where there were only comments and blank lines.
  std::vector<TclWord> words;
};

/// A text that is no Tcl command. `what` says why, in the interpreter's words.
class TclSyntaxError : public std::runtime_error {
 public:
  /// What is not closed, or not followed by a blank where it is.
  enum class Cause { Quote, Bracket, Brace, Other };

  TclSyntaxError(const std::string& message, Cause what, std::size_t where)
      : std::runtime_error(message), whatIsWrong(what), place(where) {}

  Cause cause() const noexcept { return whatIsWrong; }
  /// The position in the text.
  std::size_t position() const noexcept { return place; }

 private:
  Cause whatIsWrong;
  std::size_t place;
};

/// Reads the command that begins at `position`, or after comments and blank lines there, with the
/// interpreter's parser but without an interpreter.
///
/// @param tclText as toTclText gives it, of at most INT_MAX bytes
/// @throws TclSyntaxError where it is not well-formed
TclCommand parseTclCommand(std::string_view tclText, std::size_t position);

}  // namespace vestra::reading

#endif
