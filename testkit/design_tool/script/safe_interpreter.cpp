#include "design_tool/script/safe_interpreter.h"

#include <set>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "reading/tcl_text.h"

namespace vestra::design_tool {

using reading::toBytes;

namespace {

/// Regular expressions are left out: they can run for ever inside one command, where no limit is looked at.
const std::set<std::string_view>& computation() {
  static const std::set<std::string_view> names{
      "append", "break",   "catch",   "concat",  "continue", "dict",   "error",   "eval",     "expr",
      "for",    "foreach", "format",  "global",  "if",       "incr",   "join",    "lappend",  "lassign",
      "lindex", "linsert", "list",    "llength", "lmap",     "lrange", "lrepeat", "lreplace", "lreverse",
      "lset",   "proc",    "return",  "scan",    "set",      "split",  "string",  "subst",    "throw",
      "try",    "unset",   "uplevel", "upvar",   "variable", "while"};
  return names;
}

/// What the remaining commands do not need of the interpreter's own namespaces; last the one that serves this
/// script.
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

Tcl_Interp* createInterpreter() {
  static const bool isLibraryReady = (Tcl_FindExecutable(nullptr), true);
  return isLibraryReady ? Tcl_CreateInterp() : nullptr;
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

SafeInterpreter::SafeInterpreter(const Limits& scriptLimits)
    : interpreter(createInterpreter()), limits(scriptLimits) {
  keepOnlyComputation();
  limitCommands();
  limitTime();
}

std::string SafeInterpreter::exceededLimit() const {
  if (!Tcl_LimitExceeded(get())) {
    return "";
  }
  if (Tcl_LimitTypeExceeded(get(), TCL_LIMIT_COMMANDS)) {
    return fmt::format("the script has run more than {} commands", limits.commands);
  }
  return fmt::format("the command has run for more than {} s of processor time",
                     static_cast<double>(limits.processorTime.count()) / 1000);
}

std::string SafeInterpreter::result() const {
  int length = 0;
  const char* const text = Tcl_GetStringFromObj(Tcl_GetObjResult(get()), &length);
  return toBytes({text, static_cast<std::size_t>(length)});
}

void SafeInterpreter::keepOnlyComputation() {
  mustSucceed(get(), Tcl_MakeSafe(get()));
  const std::vector<std::string> commands = commandsOf(get());
  mustSucceed(get(), Tcl_Eval(get(), DELETE_NAMESPACES));
  for (const std::string& name : commands) {
    if (computation().count(name) == 0) {
      Tcl_DeleteCommand(get(), name.c_str());
    }
  }
  Tcl_ResetResult(get());
}

void SafeInterpreter::restartClock() {
  started = std::clock();
  setDeadline(limits.processorTime);
}

/// The interpreter knows the clock on the wall only: it is given a deadline, and at the deadline as much time
/// more as the processor has not worked for the command.
void SafeInterpreter::onDeadline(ClientData self, Tcl_Interp*) {
  auto& interpreter = *static_cast<SafeInterpreter*>(self);
  const std::chrono::microseconds used((std::clock() - interpreter.started) * 1'000'000 / CLOCKS_PER_SEC);
  if (used < interpreter.limits.processorTime) {
    interpreter.setDeadline(interpreter.limits.processorTime - used);
  }
}

void SafeInterpreter::setDeadline(std::chrono::microseconds timeFromNow) {
  Tcl_Time deadline;
  Tcl_GetTime(&deadline);
  const auto microseconds = deadline.usec + timeFromNow.count();
  deadline.sec += static_cast<long>(microseconds / 1'000'000);
  deadline.usec = static_cast<long>(microseconds % 1'000'000);
  Tcl_LimitSetTime(get(), &deadline);
  Tcl_LimitTypeSet(get(), TCL_LIMIT_TIME);
}

void SafeInterpreter::limitTime() { Tcl_LimitAddHandler(get(), TCL_LIMIT_TIME, &onDeadline, this, nullptr); }

void SafeInterpreter::limitCommands() {
  Tcl_LimitSetCommands(get(), limits.commands);
  Tcl_LimitTypeSet(get(), TCL_LIMIT_COMMANDS);
}

}  // namespace vestra::design_tool
