#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_RUN_READER_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_RUN_READER_H

#include <vestra/testkit/host_run.h>

#include "sandbox/forked_process.h"
#include "sandbox/run_setup.h"

namespace vestra::testkit {

/// Where a sandbox's user keeps the settings, there or not.
std::string settingsFileIn(const std::string& sandboxDirectory);
/// Where a sandbox's project keeps its identity, there or not.
std::string identityFileIn(const std::string& sandboxDirectory);

/// Reads back what a run left.
///
/// @param end  how its process ended
/// @throws std::runtime_error when the run could not be made
HostRun runIn(const RunPlace& place, const ProcessEnd& end);

}  // namespace vestra::testkit

#endif
