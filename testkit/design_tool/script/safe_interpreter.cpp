#include "design_tool/script/safe_interpreter.h"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace vestra::design_tool {
namespace {

const std::set<std::string> COMPUTATION{
    "append", "break",   "catch",   "concat",  "continue", "dict",   "error",   "eval",     "expr",
    "for",    "foreach", "format",  "global",  "if",       "incr",   "join",    "lappend",  "lassign",
    "lindex", "linsert", "list",    "llength", "lmap",     "lrange", "lrepeat", "lreplace", "lreverse",
    "lset",   "proc",    "return",  "scan",    "set",      "split",  "string",  "subst",    "throw",
    "try",    "unset",   "uplevel", "upvar",   "variable", "while"};

/// The namespaces that the commands above do not need; last the one that runs this script.
constexpr const char* DELETE_NAMESPACES = R"(
  foreach name [namespace children ::] {
    if {$name ne "::tcl"} {namespace delete $name}
  }
  foreach name [namespace children ::tcl] {
    if {[namespace tail $name] ni {mathfunc mathop string dict namespace}} {namespace delete $name}
  }
  namespace delete ::tcl::namespace
)";

void mustSucceed(Tcl_Interp* interpreter, int status) {
  if (status != TCL_OK) {
    throw std::runtime_error(Tcl_GetStringResult(interpreter));
  }
}

std::vector<std::string> commandsOf(Tcl_Interp* interpreter) {
  mustSucceed(interpreter, Tcl_Eval(interpreter, "info commands"));
  int count = 0;
  Tcl_Obj** names = nullptr;
  mustSucceed(interpreter,
              Tcl_ListObjGetElements(interpreter, Tcl_GetObjResult(interpreter), &count, &names));
  std::vector<std::string> commands;
  for (int i = 0; i < count; ++i) {
    commands.emplace_back(Tcl_GetString(names[i]));
  }
  return commands;
}

}  // namespace

SafeInterpreter makeSafeInterpreter(int mostCommands) {
  static const bool isLibraryReady = (Tcl_FindExecutable(nullptr), true);
  SafeInterpreter interpreter(isLibraryReady ? Tcl_CreateInterp() : nullptr);
  mustSucceed(interpreter.get(), Tcl_MakeSafe(interpreter.get()));
  const std::vector<std::string> commands = commandsOf(interpreter.get());
  mustSucceed(interpreter.get(), Tcl_Eval(interpreter.get(), DELETE_NAMESPACES));
  for (const std::string& name : commands) {
    if (COMPUTATION.count(name) == 0) {
      Tcl_DeleteCommand(interpreter.get(), name.c_str());
    }
  }
  Tcl_ResetResult(interpreter.get());
  Tcl_LimitSetCommands(interpreter.get(), mostCommands);
  Tcl_LimitTypeSet(interpreter.get(), TCL_LIMIT_COMMANDS);
  return interpreter;
}

}  // namespace vestra::design_tool
