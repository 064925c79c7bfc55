#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_SHELL_RECORD_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_SHELL_RECORD_H

#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// What a host gave to the shell, and what it printed itself.
struct ShellRecord {
  std::vector<ToolRun> toolRuns;
  std::vector<HostCommand> hostCommands;
  std::string output;
  std::string errorOutput;
};

/// Reads what was recorded of the shell, and takes the design tool's part out of what was
/// printed.
///
/// @param directory    of the record
/// @param output       all that was printed on standard output
/// @param errorOutput  the same for standard error
ShellRecord shellRecordIn(const std::string& directory, const std::string& output,
                          const std::string& errorOutput);

}  // namespace vestra::testkit

#endif
