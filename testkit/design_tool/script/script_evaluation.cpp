#include "design_tool/script/script_evaluation.h"

#include <algorithm>

#include <fmt/format.h>
#include <tcl.h>

#include "design_tool/limits.h"
#include "design_tool/script/protocol.h"
#include "design_tool/script/safe_interpreter.h"
#include "design_tool/script/script.h"
#include "reading/tcl_command.h"
#include "reading/tcl_text.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::TclCommand;
using reading::TclSyntaxError;
using reading::TclWord;
using reading::toBytes;

namespace {

constexpr const char* BRACKET_HINT = "; a square bracket inside a value asks Tcl to run a command";

std::string bytesOf(Tcl_Obj* object) {
  int length = 0;
  const char* const text = Tcl_GetStringFromObj(object, &length);
  return toBytes({text, static_cast<std::size_t>(length)});
}

/// What in a value, context or key usually leads to the interpreter's complaint.
const char* hintFor(TclSyntaxError::Cause cause) {
  switch (cause) {
    case TclSyntaxError::Cause::Quote:
      return "; a double quote inside a value reaches the script as it is";
    case TclSyntaxError::Cause::Bracket:
      return BRACKET_HINT;
    case TclSyntaxError::Cause::Brace:
      return "; a brace at the start of a key reaches the script as it is";
    case TclSyntaxError::Cause::Other:
      break;
  }
  return "";
}

/// Whether each word becomes exactly one argument without another command being run for it.
bool isPlain(const TclCommand& command) {
  return std::none_of(command.words.begin(), command.words.end(),
                      [](const TclWord& word) { return word.isExpanded || word.runsCommand; });
}

/// The first word for which the interpreter looks up a variable or runs a command, else the command's name.
Span firstSubstitution(const TclCommand& command) {
  const auto word = std::find_if(command.words.begin(), command.words.end(), [](const TclWord& candidate) {
    return candidate.readsVariable || candidate.runsCommand;
  });
  return (word == command.words.end() ? command.words.front() : *word).span;
}

/// One run of one script. No exception may pass through the interpreter, which calls back into this.
class Evaluation {
 public:
  Evaluation(const Script& text, int mostCommands)
      : script(text), interpreter(makeSafeInterpreter(mostCommands)) {
    for (const char* const name : Protocol::COMMANDS) {
      Tcl_CreateObjCommand(interpreter.get(), name, &onCommand, this, nullptr);
    }
  }

  PartialReport run() {
    try {
      for (std::size_t position = 0; position < script.text().size();) {
        position = runCommandAt(position);
      }
      if (!protocol.isOver()) {
        throw DiagnosedError({script.file(), script.lastLine(),
                              fmt::format("the script ends without {}", protocol.missingCommand()), "", 0,
                              0});
      }
    } catch (const DiagnosedError& error) {
      return {protocol.release(), error.diagnostic()};
    }
    return {protocol.release(), std::nullopt};
  }

 private:
  static int onCommand(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]) {
    auto& evaluation = *static_cast<Evaluation*>(self);
    try {
      if (!evaluation.protocolError) {
        evaluation.protocol.take(evaluation.invocationOf(count, words));
        return TCL_OK;
      }
    } catch (const ProtocolError& error) {
      evaluation.protocolError = evaluation.script.diagnose(error.span, error.what());
    }
    Tcl_SetObjResult(tcl, Tcl_NewStringObj("refused", -1));
    return TCL_ERROR;
  }

  [[noreturn]] void fail(Span span, const std::string& message) const {
    throw DiagnosedError(script.diagnose(span, message));
  }

  /// Returns the position behind the command.
  std::size_t runCommandAt(std::size_t position) {
    noteLine(script.lineOf(position));
    command = commandAt(position);
    if (command.words.empty()) {
      return command.end();
    }
    if (protocol.isOver()) {
      fail(command.words.front().span, "nothing may follow vestra_terminate");
    }
    line = script.lineOf(command.span.begin);
    noteLine(line);
    const int status = Tcl_EvalEx(interpreter.get(), script.text().data() + command.span.begin,
                                  static_cast<int>(command.span.length), TCL_EVAL_GLOBAL);
    if (protocolError) {
      throw DiagnosedError(*protocolError);
    }
    if (Tcl_LimitExceeded(interpreter.get())) {
      fail(command.words.front().span, "the script runs too many commands");
    }
    if (status != TCL_OK) {
      fail(firstSubstitution(command), interpreterMessage());
    }
    return command.end();
  }

  TclCommand commandAt(std::size_t position) const {
    try {
      return reading::parseTclCommand(script.text(), position);
    } catch (const TclSyntaxError& error) {
      fail({error.position(), 1}, std::string(error.what()) + hintFor(error.cause()));
    }
  }

  std::string interpreterMessage() const {
    std::string message = bytesOf(Tcl_GetObjResult(interpreter.get()));
    std::replace(message.begin(), message.end(), '\n', ' ');
    message = reading::forTerminal(message);
    if (message.rfind("can't read", 0) == 0) {
      return message + "; a dollar sign inside a value asks Tcl for a variable";
    }
    const bool isUnknown = message.rfind("invalid command name", 0) == 0;
    return message + (isUnknown && !isPlain(command) ? BRACKET_HINT : "");
  }

  Invocation invocationOf(int count, Tcl_Obj* const words[]) const {
    const std::vector<TclWord>& places = command.words;
    Invocation invocation{bytesOf(words[0]), {}, line, places.front().span, false};
    invocation.spelled = isPlain(command) && places.size() == static_cast<std::size_t>(count) &&
                         script.bytesOf(places.front().span) == invocation.command;
    for (int i = 1; i < count; ++i) {
      const Span place = invocation.spelled ? places[static_cast<std::size_t>(i)].span : Span{};
      invocation.arguments.push_back({bytesOf(words[i]), script.bytesOf(place), place});
    }
    return invocation;
  }

  const Script& script;
  Protocol protocol;
  TclCommand command;
  std::size_t line = 1;
  std::optional<Diagnostic> protocolError;
  SafeInterpreter interpreter;
};

}  // namespace

PartialReport evaluateAsFarAsPossible(const std::string& file, std::string_view bytes, int mostCommands) {
  const Script script(file, bytes);
  return Evaluation(script, mostCommands).run();
}

Report evaluateScript(const std::string& file, std::string_view bytes, int mostCommands) {
  PartialReport evaluated = evaluateAsFarAsPossible(file, bytes, mostCommands);
  if (evaluated.error) {
    throw DiagnosedError(*evaluated.error);
  }
  return std::move(evaluated.report);
}

}  // namespace vestra::design_tool
