#include "handler/recording_interpreter.h"

#include <tcl.h>

#include <memory>
#include <stdexcept>

namespace vestra_test {
namespace {

constexpr const char* COMMANDS[] = {"vestra_init", "vestra_register_client", "vestra_add_data",
                                    "vestra_transmit", "vestra_terminate"};

/// Bytes of the script and characters of the interpreter, one for one.
class ByteEncoding {
 public:
  ByteEncoding() : encoding(Tcl_GetEncoding(nullptr, "iso8859-1")) {}
  ByteEncoding(const ByteEncoding&) = delete;
  ByteEncoding& operator=(const ByteEncoding&) = delete;
  ~ByteEncoding() { Tcl_FreeEncoding(encoding); }

  std::string toInterpreter(const std::string& bytes) const {
    Tcl_DString text;
    Tcl_ExternalToUtfDString(encoding, bytes.data(), static_cast<int>(bytes.size()), &text);
    return taken(text);
  }

  std::string fromInterpreter(Tcl_Obj* object) const {
    int length = 0;
    const char* characters = Tcl_GetStringFromObj(object, &length);
    Tcl_DString bytes;
    Tcl_UtfToExternalDString(encoding, characters, length, &bytes);
    return taken(bytes);
  }

 private:
  static std::string taken(Tcl_DString& text) {
    const std::string copy(Tcl_DStringValue(&text), static_cast<std::size_t>(Tcl_DStringLength(&text)));
    Tcl_DStringFree(&text);
    return copy;
  }

  Tcl_Encoding encoding;
};

struct Recorder {
  ByteEncoding bytes;
  std::vector<ScriptCommand> commands;
};

int record(ClientData data, Tcl_Interp*, int count, Tcl_Obj* const words[]) {
  auto* recorder = static_cast<Recorder*>(data);
  ScriptCommand command;
  for (int i = 0; i < count; ++i) {
    command.push_back(recorder->bytes.fromInterpreter(words[i]));
  }
  recorder->commands.push_back(command);
  return TCL_OK;
}

}  // namespace

std::vector<ScriptCommand> commandsOf(const std::string& script) {
  static const bool isFound = (Tcl_FindExecutable(nullptr), true);
  static_cast<void>(isFound);
  Recorder recorder;
  const std::unique_ptr<Tcl_Interp, decltype(&Tcl_DeleteInterp)> interpreter(Tcl_CreateInterp(),
                                                                             &Tcl_DeleteInterp);
  Tcl_MakeSafe(interpreter.get());
  for (const char* name : COMMANDS) {
    Tcl_CreateObjCommand(interpreter.get(), name, record, &recorder, nullptr);
  }
  const std::string text = recorder.bytes.toInterpreter(script);
  if (Tcl_EvalEx(interpreter.get(), text.data(), static_cast<int>(text.size()), TCL_EVAL_GLOBAL) != TCL_OK) {
    throw std::runtime_error(Tcl_GetStringResult(interpreter.get()));
  }
  return recorder.commands;
}

}  // namespace vestra_test
