#include "parsed_command.h"

#include <algorithm>
#include <memory>

#include "tcl_text.h"

namespace vestra::design_tool {

namespace {

struct ParseDeleter {
  void operator()(Tcl_Parse* parse) const { Tcl_FreeParse(parse); }
};

/// What in a value, context or key usually leads to the interpreter's complaint.
const char* hintFor(int error) {
  switch (error) {
    case TCL_PARSE_QUOTE_EXTRA:
    case TCL_PARSE_MISSING_QUOTE:
      return "; a double quote inside a value reaches the script as it is";
    case TCL_PARSE_MISSING_BRACKET:
      return "; a square bracket inside a value asks Tcl to run a command";
    case TCL_PARSE_BRACE_EXTRA:
    case TCL_PARSE_MISSING_BRACE:
      return "; a brace at the start of a key reaches the script as it is";
    default:
      return "";
  }
}

Diagnostic syntaxError(Tcl_Interp* interpreter, const Script& script, const Tcl_Parse& parse,
                       std::size_t position) {
  const char* const begin = script.text().data();
  const auto term = static_cast<std::size_t>(std::max(parse.term, begin + position) - begin);
  int length = 0;
  const char* const message = Tcl_GetStringFromObj(Tcl_GetObjResult(interpreter), &length);
  return script.diagnose({std::min(term, script.text().size()), 1},
                         toBytes({message, static_cast<std::size_t>(length)}) + hintFor(parse.errorType));
}

bool isSubstitution(const Tcl_Token& token) {
  return token.type == TCL_TOKEN_COMMAND || token.type == TCL_TOKEN_VARIABLE;
}

bool isCommand(const Tcl_Token& token) { return token.type == TCL_TOKEN_COMMAND; }

}  // namespace

ParsedCommand::ParsedCommand(Tcl_Interp* interpreter, const Script& script, std::size_t position) {
  const char* const text = script.text().data();
  Tcl_Parse parse;
  const int remaining = static_cast<int>(script.text().size() - position);
  if (Tcl_ParseCommand(interpreter, text + position, remaining, 0, &parse) != TCL_OK) {
    throw DiagnosedError(syntaxError(interpreter, script, parse, position));
  }
  const std::unique_ptr<Tcl_Parse, ParseDeleter> owner(&parse);
  span_ = {static_cast<std::size_t>(parse.commandStart - text), static_cast<std::size_t>(parse.commandSize)};
  readWords(parse, text);
}

void ParsedCommand::readWords(const Tcl_Parse& parse, const char* text) {
  bool hasSubstitution = false;
  for (int i = 0; i < parse.numTokens; i += parse.tokenPtr[i].numComponents + 1) {
    const Tcl_Token& word = parse.tokenPtr[i];
    const Tcl_Token* const begin = &word + 1;
    const Tcl_Token* const end = begin + word.numComponents;
    words_.push_back({static_cast<std::size_t>(word.start - text), static_cast<std::size_t>(word.size)});
    if (word.type == TCL_TOKEN_EXPAND_WORD || std::any_of(begin, end, isCommand)) {
      is_plain_ = false;
    }
    if (!hasSubstitution && std::any_of(begin, end, isSubstitution)) {
      hasSubstitution = true;
      first_substitution_ = words_.back();
    }
  }
  if (!hasSubstitution && !words_.empty()) {
    first_substitution_ = words_.front();
  }
}

}  // namespace vestra::design_tool
