#include "script_evaluation.h"

#include <fmt/format.h>
#include <tcl.h>

#include <algorithm>
#include <exception>
#include <optional>

#include "protocol.h"
#include "reading/tcl_command.h"
#include "reading/tcl_text.h"
#include "reading/visible_text.h"
#include "safe_interpreter.h"
#include "script.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::parseTclCommand;
using reading::TclCommand;
using reading::TclSyntaxError;
using reading::TclWord;
using reading::toBytes;

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
  Evaluation(const Script& script, const Limits& limits, LineObserver observer);

  Report run();

 private:
  static int onCommand(ClientData self, Tcl_Interp* interpreter, int count, Tcl_Obj* const words[]);
  static void onTampering(ClientData self, Tcl_Interp* interpreter, const char* name, const char* newName,
                          int flags);

  void defineCommands();
  void runCommand(const TclCommand& command);
  void throwWhatWentWrong(const TclCommand& command) const;
  std::string interpreterMessage(const TclCommand& command) const;
  void take(int count, Tcl_Obj* const words[]);
  Invocation invocationOf(int count, Tcl_Obj* const words[]) const;
  void checkIsOver() const;

  const Script& script_;
  LineObserver observer_;
  Protocol protocol_;
  const TclCommand* current_ = nullptr;
  std::size_t current_line_ = 1;
  std::optional<ProtocolError> protocol_error_;
  std::exception_ptr failure_;
  SafeInterpreter interpreter_;
};

Evaluation::Evaluation(const Script& script, const Limits& limits, LineObserver observer)
    : script_(script), observer_(observer), interpreter_(limits) {
  defineCommands();
}

Report Evaluation::run() {
  for (std::size_t position = 0; position < script_.text().size();) {
    const TclCommand command = commandAt(script_, position);
    if (!command.words.empty()) {
      runCommand(command);
    }
    position = command.end();
  }
  checkIsOver();
  return protocol_.release();
}

int Evaluation::onCommand(ClientData self, Tcl_Interp* interpreter, int count, Tcl_Obj* const words[]) {
  auto& evaluation = *static_cast<Evaluation*>(self);
  try {
    evaluation.take(count, words);
    return TCL_OK;
  } catch (const ProtocolError& error) {
    if (!evaluation.protocol_error_) {
      evaluation.protocol_error_ = error;
    }
  } catch (...) {
    evaluation.failure_ = std::current_exception();
  }
  Tcl_SetObjResult(interpreter, Tcl_NewStringObj("refused", -1));
  return TCL_ERROR;
}

void Evaluation::onTampering(ClientData self, Tcl_Interp* interpreter, const char* name, const char*, int) {
  if (Tcl_InterpDeleted(interpreter)) {
    return;
  }
  auto& evaluation = *static_cast<Evaluation*>(self);
  if (evaluation.protocol_error_) {
    return;
  }
  const std::string_view fullName = name;
  evaluation.protocol_error_.emplace(
      fmt::format("{} can't be redefined", fullName.substr(fullName.rfind(':') + 1)),
      evaluation.current_->words.front().span);
}

void Evaluation::defineCommands() {
  for (const std::string_view name : Protocol::commands()) {
    const std::string text(name);
    Tcl_CreateObjCommand(interpreter_.get(), text.c_str(), &onCommand, this, nullptr);
    Tcl_TraceCommand(interpreter_.get(), text.c_str(), TCL_TRACE_RENAME | TCL_TRACE_DELETE, &onTampering,
                     this);
  }
}

void Evaluation::runCommand(const TclCommand& command) {
  if (protocol_.isOver()) {
    throw DiagnosedError(script_.diagnose(command.words.front().span, "nothing may follow vestra_terminate"));
  }
  current_ = &command;
  current_line_ = script_.lineOf(command.span.begin);
  if (observer_ != nullptr) {
    observer_(current_line_);
  }
  interpreter_.restartClock();
  const char* const text = script_.text().data() + command.span.begin;
  const int status =
      Tcl_EvalEx(interpreter_.get(), text, static_cast<int>(command.span.length), TCL_EVAL_GLOBAL);
  if (status != TCL_OK || protocol_error_ || failure_) {
    throwWhatWentWrong(command);
  }
}

void Evaluation::throwWhatWentWrong(const TclCommand& command) const {
  if (failure_) {
    std::rethrow_exception(failure_);
  }
  if (protocol_error_) {
    throw DiagnosedError(script_.diagnose(protocol_error_->span(), protocol_error_->what()));
  }
  const std::string limit = interpreter_.exceededLimit();
  if (!limit.empty()) {
    throw DiagnosedError(script_.diagnose(command.words.front().span, limit));
  }
  throw DiagnosedError(script_.diagnose(firstSubstitution(command), interpreterMessage(command)));
}

std::string Evaluation::interpreterMessage(const TclCommand& command) const {
  std::string message = interpreter_.result();
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
  if (protocol_error_) {
    throw *protocol_error_;
  }
  protocol_.take(invocationOf(count, words));
}

Invocation Evaluation::invocationOf(int count, Tcl_Obj* const words[]) const {
  const std::vector<TclWord>& places = current_->words;
  Invocation invocation;
  invocation.command = bytesOf(words[0]);
  invocation.line = current_line_;
  invocation.span = places.front().span;
  invocation.spelled = isPlain(*current_) && places.size() == static_cast<std::size_t>(count) &&
                       script_.bytesOf(places.front().span) == invocation.command;
  for (int i = 1; i < count; ++i) {
    const Span place = invocation.spelled ? places[static_cast<std::size_t>(i)].span : Span{};
    invocation.arguments.push_back({bytesOf(words[i]), script_.bytesOf(place), place});
  }
  return invocation;
}

void Evaluation::checkIsOver() const {
  if (protocol_.isOver()) {
    return;
  }
  throw DiagnosedError({script_.file(), script_.lastLine(),
                        fmt::format("the script ends without {}", protocol_.missingCommand()), "", 0, 0});
}

}  // namespace

Report evaluateScript(const std::string& file, std::string_view bytes, const Limits& limits,
                      LineObserver observer) {
  const Script script(file, bytes);
  refuseHugeText(script, limits.bytes);
  refuseDeepBrackets(script);
  return Evaluation(script, limits, observer).run();
}

}  // namespace vestra::design_tool
