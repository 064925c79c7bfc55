#ifndef VESTRA_TESTKIT_GOOGLE_TEST_H
#define VESTRA_TESTKIT_GOOGLE_TEST_H

#include <gtest/gtest.h>

#include <vestra/testkit/test_framework.h>

/// Brings assertions of GoogleTest out of the host's process. Including this header, as
/// <vestra/testkit/matchers.h> does, is all that is needed.
namespace vestra::testkit {

/// What sandboxes ask, asked of GoogleTest.
class GoogleTest {
 public:
  /// In the host's process: has each failed assertion noted instead of printed.
  static void watch(void (*note)(const FailedAssertion&)) {
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    listeners.Append(new Listener(note));
  }

  /// In the test's process: fails the running test with an assertion of the host's.
  static void fail(const FailedAssertion& assertion) {
    ADD_FAILURE_AT(assertion.file.c_str(), assertion.line) << "In the host's process:\n" << assertion.text;
  }

  /// Whether the running test has failed; false outside of tests.
  static bool hasFailed() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return test != nullptr && test->result()->Failed();
  }

 private:
  class Listener : public testing::EmptyTestEventListener {
   public:
    explicit Listener(void (*whatNotes)(const FailedAssertion&)) : note(whatNotes) {}

    void OnTestPartResult(const testing::TestPartResult& result) override {
      if (result.failed()) {
        note({result.file_name() != nullptr ? result.file_name() : "", result.line_number(),
              result.message()});
      }
    }

   private:
    void (*note)(const FailedAssertion&);
  };
};

/// Set while the test program starts: sandboxes ask GoogleTest from then on.
inline const bool GOOGLE_TEST_IS_USED =
    useTestFramework({GoogleTest::watch, GoogleTest::fail, GoogleTest::hasFailed});

}  // namespace vestra::testkit

#endif
