#ifndef VESTRA_DESIGN_TOOL_SCRIPT_SAFE_INTERPRETER_H
#define VESTRA_DESIGN_TOOL_SCRIPT_SAFE_INTERPRETER_H

#include <memory>

#include <tcl.h>

namespace vestra::design_tool {

struct InterpreterDeleter {
  void operator()(Tcl_Interp* interpreter) const { Tcl_DeleteInterp(interpreter); }
};

using SafeInterpreter = std::unique_ptr<Tcl_Interp, InterpreterDeleter>;

/// An interpreter that can compute and nothing else: no files, channels, processes, sockets, packages,
/// events, other interpreters or namespaces, and no library of its own on disk.
///
/// @param mostCommands runs no more than this, those inside of loops and procedures included
SafeInterpreter makeSafeInterpreter(int mostCommands);

}  // namespace vestra::design_tool

#endif
