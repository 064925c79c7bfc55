#ifndef VESTRA_INSPECT_REHEARSE_PROGRAM_RUN_H
#define VESTRA_INSPECT_REHEARSE_PROGRAM_RUN_H

#include <chrono>
#include <string>
#include <vector>

namespace vestra::inspect {

/// How a program ended.
struct ProgramEnd {
  /// Its exit status; 128 and the signal's number when a signal ended it.
  int status = 0;
  /// What it has left running, in sessions of their own too: number and command line of each process.
  std::vector<std::string> stillRunning;
};

/// Runs a program, and waits for what it leaves running as long as the limit says. An interrupt from
/// the terminal is the program's.
///
/// @param outputIsErrors  Whether its output goes to the standard error.
ProgramEnd runProgram(const std::string& path, const std::vector<std::string>& words,
                      const std::vector<std::string>& environment, bool outputIsErrors,
                      std::chrono::milliseconds limit);

}  // namespace vestra::inspect

#endif
