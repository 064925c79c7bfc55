// Assertions that fail in the host's process fail the test.

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include "support/child_process.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace {

using Oza::Vestra;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace vestra::testkit;
using vestra_test::inChildProcess;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;

/// What fails in a test that does this, a line each: the test is a copy of this one in a
/// process of its own, so that this one goes on.
template <typename Test>
std::string failuresOf(const Test& test) {
  // A sandbox of a test that fails is kept.
  const TemporaryDirectory temporary;
  const ScopedEnv place("TMPDIR", temporary.path());
  return inChildProcess([&] {
    testing::internal::CaptureStdout();
    test();
    testing::internal::GetCapturedStdout();
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    std::string failures;
    for (int i = 0; i < result.total_part_count(); ++i) {
      const testing::TestPartResult& part = result.GetTestPartResult(i);
      failures += std::string(part.file_name()) + ":" + std::to_string(part.line_number()) + ": " +
                  part.message() + "\n";
    }
    return failures;
  });
}

TEST(AnAssertionInTheHost, FailsTheTestWithItsMessageAndPlace) {
  const std::string place = std::string(__FILE__) + ":" + std::to_string(__LINE__ + 3) + ": ";
  EXPECT_THAT(failuresOf([] {
                Sandbox sandbox;
                sandbox.run(Vestra::KELVO, [] { EXPECT_EQ(1 + 1, 3) << "says the host"; });
              }),
              AllOf(HasSubstr(place), HasSubstr("1 + 1"), HasSubstr("says the host")));
}

TEST(AnAssertionInTheHost, StandsInTheRunAndNotInItsOutput) {
  EXPECT_EQ(failuresOf([] {
              Sandbox sandbox;
              const HostRun run = sandbox.run(Vestra::KELVO, [] { FAIL() << "on purpose"; });
              const bool isThere = run.failedAssertions.size() == 1 && run.output.empty();
              ADD_FAILURE_AT("here", 1) << (isThere ? "as it should" : "not as it should");
            }).find("not as it should"),
            std::string::npos);
}

TEST(AnAssertionInTheHost, EndsItsFunctionWhenItIsFatal) {
  EXPECT_THAT(failuresOf([] {
                Sandbox sandbox;
                sandbox.run(Vestra::KELVO, [] {
                  ASSERT_TRUE(false) << "first";
                  ADD_FAILURE() << "second";
                });
              }),
              AllOf(HasSubstr("first"), testing::Not(HasSubstr("second"))));
}

TEST(AnAssertionInTheHost, CountsInEachOfSeveralHosts) {
  EXPECT_THAT(failuresOf([] {
                Sandbox sandbox;
                sandbox.runTogether(3, [](int number) {
                  EXPECT_NE(number, 1);
                  return true;
                });
              }),
              HasSubstr("number"));
}

TEST(AnAssertionInTheHost, LeavesTheTestAloneWhenItHolds) {
  Sandbox sandbox;
  const HostRun run = sandbox.run(Vestra::KELVO, [] { EXPECT_EQ(1 + 1, 2); });
  EXPECT_THAT(run.failedAssertions, IsEmpty());
  EXPECT_THAT(run, WasSent());
}

}  // namespace
