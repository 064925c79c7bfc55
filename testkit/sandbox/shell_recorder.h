#ifndef VESTRA_TESTKIT_SANDBOX_SHELL_RECORDER_H
#define VESTRA_TESTKIT_SANDBOX_SHELL_RECORDER_H

#include <cstddef>
#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// From now on, each command line that this process gives to `system` is written
/// down below `directory`, with the script and the rules file as they lie there
/// when it starts, before the C library runs it.
void recordShellIn(const std::string& directory);

/// What was written down, and what the process printed itself.
struct ShellRecord {
  std::vector<ToolRun> toolRuns;
  std::string output;
  std::string errorOutput;
};

/// Takes the commands' parts out of what the process and they have printed.
ShellRecord shellRecordIn(const std::string& directory, const std::string& output,
                          const std::string& errorOutput);

/// The rules file that lies beside a report script.
std::string rulesFileBeside(const std::string& script);

}  // namespace vestra::testkit

#endif
