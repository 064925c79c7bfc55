#include "design_tool/script/script_evaluation.h"

#include <algorithm>
#include <memory>
#include <optional>

#include <fmt/format.h>
#include <tcl.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/protocol.h"
#include "reading/tcl_text.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

namespace {

using reading::toBytes;

struct InterpreterDeleter {
  void operator()(Tcl_Interp* interpreter) const { Tcl_DeleteInterp(interpreter); }
};

using Interpreter = std::unique_ptr<Tcl_Interp, InterpreterDeleter>;

constexpr const char* BRACKET_HINT = "; a square bracket inside a value asks Tcl to run a command";

Interpreter makeSafeInterpreter(int mostCommands, int mostSeconds) {
  static const bool isLibraryReady = (Tcl_FindExecutable(nullptr), true);
  Interpreter interpreter(isLibraryReady ? Tcl_CreateInterp() : nullptr);
  Tcl_MakeSafe(interpreter.get());
  // A safe interpreter may wait for ever, and make others that have no limits.
  for (const char* const command : {"after", "interp", "vwait"}) {
    Tcl_DeleteCommand(interpreter.get(), command);
  }
  Tcl_LimitSetCommands(interpreter.get(), mostCommands);
  Tcl_LimitTypeSet(interpreter.get(), TCL_LIMIT_COMMANDS);
  Tcl_Time end;
  Tcl_GetTime(&end);
  end.sec += mostSeconds;
  Tcl_LimitSetTime(interpreter.get(), &end);
  Tcl_LimitTypeSet(interpreter.get(), TCL_LIMIT_TIME);
  return interpreter;
}

std::string bytesOf(Tcl_Obj* object) {
  int length = 0;
  const char* const text = Tcl_GetStringFromObj(object, &length);
  return toBytes({text, static_cast<std::size_t>(length)});
}

/// What in a value, context or key usually leads to the parser's complaint.
const char* hintFor(int parseError) {
  switch (parseError) {
    case TCL_PARSE_QUOTE_EXTRA:
    case TCL_PARSE_MISSING_QUOTE:
      return "; a double quote inside a value reaches the script as it is";
    case TCL_PARSE_BRACE_EXTRA:
    case TCL_PARSE_MISSING_BRACE:
      return "; a brace at the start of a key reaches the script as it is";
    case TCL_PARSE_MISSING_BRACKET:
      return BRACKET_HINT;
    default:
      return "";
  }
}

/// One run of one script. No exception may pass through the interpreter, which calls back into this.
class Evaluation {
 public:
  Evaluation(const std::string& fileName, std::string_view bytes, int mostCommands, int mostSeconds)
      : file(fileName),
        text(reading::toTclText(bytes)),
        interpreter(makeSafeInterpreter(mostCommands, mostSeconds)) {
    for (const char* const name : Protocol::COMMANDS) {
      Tcl_CreateObjCommand(interpreter.get(), name, &onCommand, this, nullptr);
    }
  }

  Report run() {
    for (std::size_t position = 0; position < text.size();) {
      position = runCommandAt(position);
    }
    if (!protocol.isOver()) {
      fail(fmt::format("the script ends without {}", protocol.missingCommand()));
    }
    return protocol.release();
  }

 private:
  static int onCommand(ClientData self, Tcl_Interp* tcl, int count, Tcl_Obj* const words[]) {
    auto& evaluation = *static_cast<Evaluation*>(self);
    try {
      if (!evaluation.protocolError) {
        Invocation invocation{bytesOf(words[0]), {}, evaluation.line};
        std::transform(words + 1, words + count, std::back_inserter(invocation.arguments), bytesOf);
        evaluation.protocol.take(invocation);
        return TCL_OK;
      }
    } catch (const ProtocolError& error) {
      evaluation.protocolError = error.what();
    }
    Tcl_SetObjResult(tcl, Tcl_NewStringObj("refused", -1));
    return TCL_ERROR;
  }

  /// Says it of the current line.
  [[noreturn]] void fail(const std::string& message) const { throw DiagnosedError(file, line, message); }

  /// Makes the line of a place, which lies behind the one before it, the current one.
  void moveTo(const char* place) {
    line += static_cast<std::size_t>(std::count(lineKnownAt, place, '\n'));
    lineKnownAt = place;
  }

  /// Returns the position behind the command.
  std::size_t runCommandAt(std::size_t position) {
    const char* const rest = text.data() + position;
    Tcl_Parse command;
    const auto size = static_cast<int>(text.size() - position);
    if (Tcl_ParseCommand(interpreter.get(), rest, size, 0, &command) != TCL_OK) {
      moveTo(std::clamp(command.term, rest, rest + size));
      fail(Tcl_GetStringResult(interpreter.get()) + std::string(hintFor(command.errorType)));
    }
    Tcl_FreeParse(&command);
    if (command.numWords != 0) {
      moveTo(command.commandStart);
      runCommand(command.commandStart, command.commandSize);
    }
    return static_cast<std::size_t>(command.commandStart + command.commandSize - text.data());
  }

  void runCommand(const char* begin, int size) {
    if (protocol.isOver()) {
      fail("nothing may follow vestra_terminate");
    }
    const int status = Tcl_EvalEx(interpreter.get(), begin, size, TCL_EVAL_GLOBAL);
    if (protocolError) {
      fail(*protocolError);
    }
    if (Tcl_LimitExceeded(interpreter.get())) {
      fail(Tcl_LimitTypeExceeded(interpreter.get(), TCL_LIMIT_TIME) ? "the script runs for too long"
                                                                    : "the script runs too many commands");
    }
    if (status != TCL_OK) {
      fail(interpreterMessage({begin, static_cast<std::size_t>(size)}));
    }
  }

  std::string interpreterMessage(std::string_view command) const {
    std::string message = bytesOf(Tcl_GetObjResult(interpreter.get()));
    std::replace(message.begin(), message.end(), '\n', ' ');
    message = reading::forTerminal(message);
    if (message.rfind("can't read", 0) == 0) {
      return message + "; a dollar sign inside a value asks Tcl for a variable";
    }
    const std::string_view unknown = "invalid command name \"";
    if (message.rfind(unknown, 0) != 0) {
      return message;
    }
    const auto name = std::string_view(message).substr(unknown.size(), message.size() - unknown.size() - 1);
    return message + (command.substr(0, name.size()) == name ? "" : BRACKET_HINT);
  }

  const std::string& file;
  const std::string text;
  Protocol protocol;
  std::size_t line = 1;
  const char* lineKnownAt = text.data();
  std::optional<std::string> protocolError;
  Interpreter interpreter;
};

}  // namespace

Report evaluateScript(const std::string& file, std::string_view bytes, int mostCommands, int mostSeconds) {
  return Evaluation(file, bytes, mostCommands, mostSeconds).run();
}

}  // namespace vestra::design_tool
