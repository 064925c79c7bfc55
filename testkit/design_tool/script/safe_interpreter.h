#ifndef VESTRA_DESIGN_TOOL_SAFE_INTERPRETER_H
#define VESTRA_DESIGN_TOOL_SAFE_INTERPRETER_H

#include <chrono>
#include <ctime>
#include <memory>
#include <string>

#include <tcl.h>

#include "design_tool/script/script_limits.h"

namespace vestra::design_tool {

/// An interpreter that can compute and nothing else: no files, channels, processes, sockets, packages,
/// events, other interpreters or namespaces, and no library of its own on disk.
class SafeInterpreter {
 public:
  explicit SafeInterpreter(const Limits& scriptLimits);

  Tcl_Interp* get() const { return interpreter.get(); }

  SafeInterpreter(const SafeInterpreter&) = delete;
  SafeInterpreter& operator=(const SafeInterpreter&) = delete;
  ~SafeInterpreter() = default;

  /// Gives the next command its time.
  void restartClock();

  /// Whether a limit has stopped the script, and which, in words; empty where none has.
  std::string exceededLimit() const;

  /// The interpreter's result, as the bytes it stands for.
  std::string result() const;

 private:
  struct Deleter {
    void operator()(Tcl_Interp* unused) const { Tcl_DeleteInterp(unused); }
  };

  static void onDeadline(ClientData self, Tcl_Interp* tcl);

  void keepOnlyComputation();
  void limitTime();
  void setDeadline(std::chrono::microseconds timeFromNow);
  void limitCommands();

  std::unique_ptr<Tcl_Interp, Deleter> interpreter;
  Limits limits;
  std::clock_t started = 0;
};

}  // namespace vestra::design_tool

#endif
