#ifndef VESTRA_TESTKIT_SANDBOX_ASSERTIONS_H
#define VESTRA_TESTKIT_SANDBOX_ASSERTIONS_H

#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// In the host's process: assertions that fail from now on are recorded.
void watchAssertions();

/// In the test's process: the recorded assertions, which now fail the current test.
///
/// @param directory  of the record
/// @param output     what the host printed
/// @throws std::runtime_error when an assertion has failed that could not be recorded
std::vector<FailedAssertion> failAsRecorded(const std::string& directory, const std::string& output);

/// In the test's process: whether the current test has failed; false where no framework
/// is known.
bool hasCurrentTestFailed();

}  // namespace vestra::testkit

#endif
