#ifndef VESTRA_INSPECT_REHEARSE_REHEARSAL_H
#define VESTRA_INSPECT_REHEARSE_REHEARSAL_H

#include <stdexcept>
#include <string>

#include "command_line.h"
#include "facts/view.h"
#include "inspector.h"

namespace vestra::inspect {

/// The status of a rehearsal that let something through.
inline constexpr int LEAKED = 124;
/// The status of a program that cannot be held back, and was not started.
inline constexpr int CANNOT_BE_HELD_BACK = 125;

/// The program was not run at all.
struct NotRehearsed : std::runtime_error {
  NotRehearsed(int exitStatus, const std::string& reason) : std::runtime_error(reason), status(exitStatus) {}
  /// As env(1) leaves then.
  int status;
};

/// Runs the program with its reports held back, and tells what they would have been.
/// @throws NotRehearsed when there is no such program, or it may not be run.
/// @throws std::runtime_error when the program cannot be held back: it was not started.
Answer rehearse(const Request& request, const View& view);

/// Why the shim would not hold the program; empty when it does. A script is held by what
/// interprets it.
std::string whyNotHeldBack(const std::string& program);

}  // namespace vestra::inspect

#endif
