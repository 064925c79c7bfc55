#ifndef VESTRA_TESTKIT_SANDBOX_HOST_PROCESS_H
#define VESTRA_TESTKIT_SANDBOX_HOST_PROCESS_H

#include <functional>
#include <string>
#include <vector>

#include "sandbox/run_setup.h"
#include "sandbox/starting_gate.h"

namespace vestra::testkit {

// Both are executed in a process of the run's own, and record in its place what they
// cannot do: see refuseFailureIn.

/// Settles in the sandbox, waits for the gate, executes the code and records its answer
/// or exception.
void beAHost(const RunSetup& setup, const RunPlace& place, StartingGate& gate,
             const std::function<bool()>& code);

/// Settles in the sandbox and becomes the program. Returns only when it cannot.
///
/// @param words  the program, with an absolute path or to be looked up in PATH, and its
///               arguments
void beAProgram(const RunSetup& setup, const RunPlace& place, const std::vector<std::string>& words);

/// Afterwards, in the process that owns the sandbox.
///
/// @throws std::runtime_error with what the run's process could not do
void refuseFailureIn(const RunPlace& place);

}  // namespace vestra::testkit

#endif
