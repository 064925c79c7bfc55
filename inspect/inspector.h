#ifndef VESTRA_INSPECT_INSPECTOR_H
#define VESTRA_INSPECT_INSPECTOR_H

#include <ostream>

#include "command_line.h"

namespace vestra::inspect {

/// Answers a request. What could not be looked at gives status 3 and its reason.
/// @param onTerminal  Whether the output goes to a terminal.
/// @return The status to leave with.
int answer(const Request& request, bool onTerminal, std::ostream& out, std::ostream& complaints);

}  // namespace vestra::inspect

#endif
