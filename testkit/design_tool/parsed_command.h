#ifndef VESTRA_DESIGN_TOOL_PARSED_COMMAND_H
#define VESTRA_DESIGN_TOOL_PARSED_COMMAND_H

#include <tcl.h>

#include <string>
#include <vector>

#include "script.h"

namespace vestra::design_tool {

/// One command of a script, taken apart by the interpreter's own parser but not yet run.
class ParsedCommand {
 public:
  /// Takes the command that begins at `position`, or after comments and blank lines there.
  /// \throws DiagnosedError when it isn't well-formed
  ParsedCommand(Tcl_Interp* interpreter, const Script& script, std::size_t position);

  /// The whole command, without what stands before it.
  Span span() const { return span_; }
  /// Where the next command may begin.
  std::size_t end() const { return span_.begin + span_.length; }
  /// Quotes and braces included. Empty when there were only comments and blanks.
  const std::vector<Span>& words() const { return words_; }
  /// Whether each word becomes exactly one argument without another command being run for it.
  bool isPlain() const { return is_plain_; }
  /// The first word for which the interpreter looks up a variable or runs a command, else the command's name.
  Span firstSubstitution() const { return first_substitution_; }

 private:
  void readWords(const Tcl_Parse& parse, const char* text);

  Span span_;
  std::vector<Span> words_;
  bool is_plain_ = true;
  Span first_substitution_;
};

}  // namespace vestra::design_tool

#endif
