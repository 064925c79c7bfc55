#ifndef VESTRA_INSPECT_INSPECTOR_H
#define VESTRA_INSPECT_INSPECTOR_H

#include <string>

#include "command_line.h"

namespace vestra::inspect {

/// What is written, and the status to leave with.
struct Answer {
  int exitStatus = 0;
  std::string output;
  std::string complaint;
};

/// Answers a request. What could not be looked at gives status 3 and its reason.
/// @param onTerminal  Whether the output goes to a terminal.
Answer answer(const Request& request, bool onTerminal);

}  // namespace vestra::inspect

#endif
