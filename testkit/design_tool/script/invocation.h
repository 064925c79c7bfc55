#ifndef VESTRA_DESIGN_TOOL_SCRIPT_INVOCATION_H
#define VESTRA_DESIGN_TOOL_SCRIPT_INVOCATION_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "design_tool/script/script.h"

namespace vestra::design_tool {

/// One argument of a command: its value, as the interpreter passed it, and its spelling in the script.
struct Word {
  std::string text;
  /// Bytes of the script, quotes included; meaningful only in an Invocation that is `spelled`.
  std::string spelling;
  Span span;
};

/// A call of one of the tool's commands.
struct Invocation {
  std::string command;
  std::vector<Word> arguments;
  /// Where the command begins, counted from 1.
  std::size_t line = 0;
  /// The command's own name or, when it was called from inside another command, that command.
  Span span;
  /// Whether the words' spellings and places are known: not in a loop, a procedure or a nested command.
  bool spelled = false;

  Span placeOf(const Word& word) const { return spelled ? word.span : span; }
};

/// A call that the protocol does not allow.
class ProtocolError : public std::runtime_error {
 public:
  ProtocolError(const std::string& message, Span where) : std::runtime_error(message), span(where) {}

  /// The place to mark.
  const Span span;
};

}  // namespace vestra::design_tool

#endif
