#include "design_tool/script/script_evaluation.h"

#include <algorithm>
#include <exception>
#include <optional>

#include <fmt/format.h>
#include <tcl.h>

#include "design_tool/script/protocol.h"
#include "design_tool/script/safe_interpreter.h"
#include "design_tool/script/script.h"
#include "reading/tcl_command.h"
#include "reading/tcl_text.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::inQuotes;
using reading::parseTclCommand;
using reading::TclCommand;
using reading::TclSyntaxError;
using reading::TclWord;
using reading::toBytes;
using reading::toTclText;

namespace {

/// The interpreter's parser calls itself for each square bracket and watches no limit while it does.
constexpr std::size_t DEEPEST_BRACKETS = 1000;

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
      return "; a square bracket inside a value asks Tcl to run a command";
    case TclSyntaxError::Cause::Brace:
      return "; a brace at the start of a key reaches the script as it is";
    case TclSyntaxError::Cause::Other:
      break;
  }
  return "";
}

TclCommand commandAt(const Script& script, std::size_t position) {
  try {
    return parseTclCommand(script.text(), position);
  } catch (const TclSyntaxError& error) {
    throw DiagnosedError(
        script.diagnose({error.position(), 1}, std::string(error.what()) + hintFor(error.cause())));
  }
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

void refuseDeepBrackets(const Script& script) {
  const std::string& text = script.text();
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      ++i;
    } else if (text[i] == ']' && depth > 0) {
      --depth;
    } else if (text[i] == '[' && ++depth > DEEPEST_BRACKETS) {
      throw DiagnosedError(script.diagnose(
          {i, 1}, fmt::format("square brackets are nested more than {} deep", DEEPEST_BRACKETS)));
    }
  }
}

void refuseHugeText(const Script& script, std::size_t most) {
  if (script.text().size() <= most) {
    return;
  }
  throw DiagnosedError({script.file(), 0, "the script is too large for the interpreter", "", 0, 0});
}

/// One run of one script. The interpreter calls back into it, and no exception may pass through the
/// interpreter: what goes wrong in a callback is kept until the interpreter has returned.
class Evaluation {
 public:
  Evaluation(const Script& text, const Limits& limits, LineObserver lineObserver);

  PartialReport run();

 private:
  static int onCommand(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]);
  static void onTampering(ClientData self, Tcl_Interp* tcl, const char* name, const char* newName, int flags);

  static int onUnknown(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]);

  void defineCommands();
  void occupyUnknown();
  void runAll();
  void runCommand(const TclCommand& command);
  void observe(std::size_t line) const;
  void throwWhatWentWrong(const TclCommand& command) const;
  std::string interpreterMessage(const TclCommand& command) const;
  void take(int count, Tcl_Obj* const words[]);
  Invocation invocationOf(int count, Tcl_Obj* const words[]) const;
  void checkIsOver() const;

  const Script& script;
  LineObserver observer;
  Protocol protocol;
  const TclCommand* current = nullptr;
  std::size_t currentLine = 1;
  std::optional<ProtocolError> protocolError;
  std::exception_ptr failure;
  SafeInterpreter interpreter;
};

Evaluation::Evaluation(const Script& text, const Limits& limits, LineObserver lineObserver)
    : script(text), observer(lineObserver), interpreter(limits) {
  defineCommands();
  occupyUnknown();
}

PartialReport Evaluation::run() {
  std::optional<Diagnostic> error;
  try {
    runAll();
  } catch (const DiagnosedError& diagnosed) {
    error = diagnosed.diagnostic();
  }
  observe(0);
  return {protocol.release(), std::move(error)};
}

void Evaluation::runAll() {
  for (std::size_t position = 0; position < script.text().size();) {
    const TclCommand command = commandAt(script, position);
    if (!command.words.empty()) {
      runCommand(command);
    }
    position = command.end();
  }
  checkIsOver();
}

int Evaluation::onCommand(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]) {
  auto& evaluation = *static_cast<Evaluation*>(self);
  try {
    evaluation.take(count, words);
    return TCL_OK;
  } catch (const ProtocolError& error) {
    if (!evaluation.protocolError) {
      evaluation.protocolError = error;
    }
  } catch (...) {
    evaluation.failure = std::current_exception();
  }
  Tcl_SetObjResult(tcl, Tcl_NewStringObj("refused", -1));
  return TCL_ERROR;
}

void Evaluation::onTampering(ClientData self, Tcl_Interp* tcl, const char* name, const char*, int) {
  if (Tcl_InterpDeleted(tcl)) {
    return;
  }
  auto& evaluation = *static_cast<Evaluation*>(self);
  if (evaluation.protocolError) {
    return;
  }
  const std::string_view fullName = name;
  evaluation.protocolError.emplace(
      fmt::format("{} cannot be redefined", fullName.substr(fullName.rfind(':') + 1)),
      evaluation.current->words.front().span);
}

void Evaluation::defineCommands() {
  for (const std::string_view name : Protocol::commands()) {
    const std::string text(name);
    Tcl_CreateObjCommand(interpreter.get(), text.c_str(), &onCommand, this, nullptr);
    Tcl_TraceCommand(interpreter.get(), text.c_str(), TCL_TRACE_RENAME | TCL_TRACE_DELETE, &onTampering,
                     this);
  }
}

/// A command of that name would be asked about each command that there is not, and could say that all is
/// well.
void Evaluation::occupyUnknown() {
  Tcl_CreateObjCommand(interpreter.get(), "unknown", &onUnknown, this, nullptr);
  Tcl_TraceCommand(interpreter.get(), "unknown", TCL_TRACE_RENAME | TCL_TRACE_DELETE, &onTampering, this);
}

int Evaluation::onUnknown(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]) {
  auto& evaluation = *static_cast<Evaluation*>(self);
  const std::string name = bytesOf(words[count > 1 ? 1 : 0]);
  const std::string message = fmt::format("invalid command name \"{}\"", toTclText(name));
  evaluation.protocol.warn({evaluation.currentLine, fmt::format("there is no command {}", inQuotes(name))});
  Tcl_SetObjResult(tcl, Tcl_NewStringObj(message.data(), static_cast<int>(message.size())));
  return TCL_ERROR;
}

void Evaluation::runCommand(const TclCommand& command) {
  if (protocol.isOver()) {
    throw DiagnosedError(script.diagnose(command.words.front().span, "nothing may follow vestra_terminate"));
  }
  current = &command;
  currentLine = script.lineOf(command.span.begin);
  interpreter.restartClock();
  observe(currentLine);
  const char* const text = script.text().data() + command.span.begin;
  const int status =
      Tcl_EvalEx(interpreter.get(), text, static_cast<int>(command.span.length), TCL_EVAL_GLOBAL);
  if (status != TCL_OK || protocolError || failure) {
    throwWhatWentWrong(command);
  }
}

void Evaluation::observe(std::size_t line) const {
  if (observer != nullptr) {
    observer(line);
  }
}

void Evaluation::throwWhatWentWrong(const TclCommand& command) const {
  if (failure) {
    std::rethrow_exception(failure);
  }
  if (protocolError) {
    throw DiagnosedError(script.diagnose(protocolError->span(), protocolError->what()));
  }
  const std::string limit = interpreter.exceededLimit();
  if (!limit.empty()) {
    throw DiagnosedError(script.diagnose(command.words.front().span, limit));
  }
  throw DiagnosedError(script.diagnose(firstSubstitution(command), interpreterMessage(command)));
}

std::string Evaluation::interpreterMessage(const TclCommand& command) const {
  std::string message = interpreter.result();
  std::replace(message.begin(), message.end(), '\n', ' ');
  message = forTerminal(message);
  if (message.rfind("can't read", 0) == 0) {
    return message + "; a dollar sign inside a value asks Tcl for a variable";
  }
  if (message.rfind("invalid command name", 0) == 0 && !isPlain(command)) {
    return message + "; a square bracket inside a value asks Tcl to run a command";
  }
  return message;
}

void Evaluation::take(int count, Tcl_Obj* const words[]) {
  if (protocolError) {
    throw *protocolError;
  }
  protocol.take(invocationOf(count, words));
}

Invocation Evaluation::invocationOf(int count, Tcl_Obj* const words[]) const {
  const std::vector<TclWord>& places = current->words;
  Invocation invocation;
  invocation.command = bytesOf(words[0]);
  invocation.line = currentLine;
  invocation.span = places.front().span;
  invocation.spelled = isPlain(*current) && places.size() == static_cast<std::size_t>(count) &&
                       script.bytesOf(places.front().span) == invocation.command;
  for (int i = 1; i < count; ++i) {
    const Span place = invocation.spelled ? places[static_cast<std::size_t>(i)].span : Span{};
    invocation.arguments.push_back({bytesOf(words[i]), script.bytesOf(place), place});
  }
  return invocation;
}

void Evaluation::checkIsOver() const {
  if (protocol.isOver()) {
    return;
  }
  throw DiagnosedError({script.file(), script.lastLine(),
                        fmt::format("the script ends without {}", protocol.missingCommand()), "", 0, 0});
}

}  // namespace

PartialReport evaluateAsFarAsPossible(const std::string& file, std::string_view bytes, const Limits& limits,
                                      LineObserver observer) {
  const Script script(file, bytes);
  try {
    refuseHugeText(script, limits.bytes);
    refuseDeepBrackets(script);
  } catch (const DiagnosedError& error) {
    return {Report(), error.diagnostic()};
  }
  return Evaluation(script, limits, observer).run();
}

Report evaluateScript(const std::string& file, std::string_view bytes, const Limits& limits,
                      LineObserver observer) {
  PartialReport evaluated = evaluateAsFarAsPossible(file, bytes, limits, observer);
  if (evaluated.error) {
    throw DiagnosedError(*evaluated.error);
  }
  return std::move(evaluated.report);
}

}  // namespace vestra::design_tool
