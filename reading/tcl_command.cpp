#include "reading/tcl_command.h"

#include <algorithm>
#include <memory>

#include <tcl.h>

namespace vestra::reading {
namespace {

using Cause = TclSyntaxError::Cause;

struct ParseDeleter {
  void operator()(Tcl_Parse* parse) const { Tcl_FreeParse(parse); }
};

struct Complaint {
  const char* message;
  Cause cause;
};

/// The parser says this only to an interpreter.
Complaint complaintAbout(int error) {
  switch (error) {
    case TCL_PARSE_QUOTE_EXTRA:
      return {"extra characters after close-quote", Cause::Quote};
    case TCL_PARSE_BRACE_EXTRA:
      return {"extra characters after close-brace", Cause::Brace};
    case TCL_PARSE_MISSING_BRACE:
      return {"missing close-brace", Cause::Brace};
    case TCL_PARSE_MISSING_BRACKET:
      return {"missing close-bracket", Cause::Bracket};
    case TCL_PARSE_MISSING_PAREN:
      return {"missing )", Cause::Other};
    case TCL_PARSE_MISSING_QUOTE:
      return {"missing \"", Cause::Quote};
    case TCL_PARSE_MISSING_VAR_BRACE:
      return {"missing close-brace for variable name", Cause::Other};
    default:
      return {"syntax error", Cause::Other};
  }
}

[[noreturn]] void fail(std::string_view text, std::size_t position, const Tcl_Parse& parse) {
  const char* const term = std::max(parse.term, text.data() + position);
  const auto [message, cause] = complaintAbout(parse.errorType);
  throw TclSyntaxError(message, cause, std::min(static_cast<std::size_t>(term - text.data()), text.size()));
}

bool isText(const Tcl_Token& token) { return token.type == TCL_TOKEN_TEXT; }

bool hasType(const Tcl_Token* begin, const Tcl_Token* end, int type) {
  return std::any_of(begin, end, [type](const Tcl_Token& token) { return token.type == type; });
}

Span spanBetween(const char* text, const char* begin, const char* end) {
  return {static_cast<std::size_t>(begin - text), static_cast<std::size_t>(end - begin)};
}

Span contentOf(const char* text, const Tcl_Token& word) {
  const bool isEnclosed = word.size >= 2 && (*word.start == '"' || *word.start == '{');
  return spanBetween(text, word.start + isEnclosed, word.start + word.size - isEnclosed);
}

TclWord wordOf(const char* text, const Tcl_Token& word) {
  const Tcl_Token* const begin = &word + 1;
  const Tcl_Token* const end = begin + word.numComponents;
  TclWord read;
  read.span = spanBetween(text, word.start, word.start + word.size);
  read.content = contentOf(text, word);
  read.isExpanded = word.type == TCL_TOKEN_EXPAND_WORD;
  read.isLiteral = !read.isExpanded && std::all_of(begin, end, isText);
  read.readsVariable = hasType(begin, end, TCL_TOKEN_VARIABLE);
  read.runsCommand = hasType(begin, end, TCL_TOKEN_COMMAND);
  return read;
}

}  // namespace

TclCommand parseTclCommand(std::string_view tclText, std::size_t position) {
  const char* const text = tclText.data();
  Tcl_Parse parse;
  const auto remaining = static_cast<int>(tclText.size() - position);
  if (Tcl_ParseCommand(nullptr, text + position, remaining, 0, &parse) != TCL_OK) {
    fail(tclText, position, parse);
  }
  const std::unique_ptr<Tcl_Parse, ParseDeleter> owner(&parse);
  TclCommand command;
  command.span = spanBetween(text, parse.commandStart, parse.commandStart + parse.commandSize);
  for (int i = 0; i < parse.numTokens; i += parse.tokenPtr[i].numComponents + 1) {
    command.words.push_back(wordOf(text, parse.tokenPtr[i]));
  }
  return command;
}

}  // namespace vestra::reading
