#ifndef VESTRA_TESTKIT_TEST_FRAMEWORK_H
#define VESTRA_TESTKIT_TEST_FRAMEWORK_H

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// What a sandbox asks of the framework that tests the host.
/// <vestra/testkit/google_test.h> has the answers of GoogleTest.
struct TestFramework {
  /// In the host's process: hands each assertion that fails from now on to `note`,
  /// instead of printing it.
  void (*watch)(void (*note)(const FailedAssertion&));
  /// In the test's process: fails the current test.
  void (*fail)(const FailedAssertion&);
  /// In the test's process: whether the current test has failed.
  bool (*hasFailed)();
};

/// Makes the framework known to all sandboxes of the process. Gives true.
VESTRA_TESTKIT_EXPORT bool useTestFramework(const TestFramework& framework);

}  // namespace vestra::testkit

#endif
