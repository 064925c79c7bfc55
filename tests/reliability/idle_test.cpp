// What the library costs a host that is linked to it and never calls it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "reliability/system_calls.h"
#include "reliability/traced_host.h"
#include "support/temporary_directory.h"

namespace vestra_test {
namespace {

/// How a host that does nothing goes, from the end of its loading to its own.
HostEnd runIdly(const std::string& program) {
  const TemporaryDirectory records;
  HostStart start;
  start.program = program;
  start.records = records.path();
  return runHost(start, {Disturbance::WATCH});
}

std::vector<std::string> namesOfCalls(const HostEnd& end) {
  std::vector<std::string> names;
  for (const SystemCall& call : end.calls) {
    names.push_back(nameOf(call.number));
  }
  return names;
}

class IdleHost : public testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = whyNothingIsTraced()) {
      GTEST_SKIP() << *reason;
    }
  }
};

TEST_F(IdleHost, SystemCallsAreThoseOfAHostWithoutTheLibrary) {
  const std::vector<std::string> calls = namesOfCalls(runIdly(IDLE_HOST));
  EXPECT_THAT(calls, testing::Contains("write"));
  EXPECT_EQ(calls, namesOfCalls(runIdly(IDLE_HOST_WITHOUT_LIBRARY)));
}

TEST_F(IdleHost, AllocationsThreadsAndFilesAreThoseOfAHostWithoutTheLibrary) {
  const std::string counts = runIdly(IDLE_HOST).output;
  EXPECT_THAT(counts, testing::MatchesRegex("[0-9]+ [0-9]+ [0-9]+\n"));
  EXPECT_EQ(counts, runIdly(IDLE_HOST_WITHOUT_LIBRARY).output);
}

}  // namespace
}  // namespace vestra_test
