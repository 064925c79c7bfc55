#ifndef VESTRA_INSPECT_REHEARSE_REHEARSAL_H
#define VESTRA_INSPECT_REHEARSE_REHEARSAL_H

#include <stdexcept>
#include <string>

#include "command_line.h"
#include "rehearse/rehearsed.h"

namespace vestra::inspect {

/// The status of a rehearsal that did not intercept every report.
inline constexpr int LEAKED = 124;
/// The status of a program that cannot be rehearsed, and was not started.
inline constexpr int CANNOT_BE_REHEARSED = 125;
inline constexpr int MAY_NOT_BE_RUN = 126;
inline constexpr int NOT_FOUND = 127;

/// The program was not run at all.
struct NotRehearsed : std::runtime_error {
  NotRehearsed(int exitStatus, const std::string& reason) : std::runtime_error(reason), status(exitStatus) {}
  /// As env(1) leaves then.
  int status;
};

/// Runs the program with its reports intercepted, and reads what they would have been.
/// @throws NotRehearsed when there is no such program, or it may not be run.
/// @throws std::runtime_error when its reports cannot be intercepted: it was not started.
Rehearsal rehearse(const Request& request, const HostContext& context);

}  // namespace vestra::inspect

#endif
