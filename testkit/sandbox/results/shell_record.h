#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_SHELL_RECORD_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_SHELL_RECORD_H

#include <string>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// Reads what was recorded of the shell: the tool runs and the host's own commands.
///
/// @param directory  of the record
void readShellRecord(const std::string& directory, HostRun& run);

}  // namespace vestra::testkit

#endif
