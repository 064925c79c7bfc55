// What the library costs a host that is linked to it and never calls it.

#include "reliability/system_calls.h"
#include "reliability/watched_host.h"

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

class IdleHost : public Test {
 protected:
  void SetUp() override {
    if (const auto reason = whyNothingIsTraced()) {
      GTEST_SKIP() << *reason;
    }
  }
};

TEST_F(IdleHost, CallsAllocatesAndOpensWhatOneWithoutTheLibraryDoes) {
  const HostEnd with = runIdly(IDLE_HOST);
  const HostEnd without = runIdly(IDLE_HOST_WITHOUT_LIBRARY);
  EXPECT_THAT(namesOfCalls(with), Contains("write"));
  EXPECT_EQ(namesOfCalls(with), namesOfCalls(without));
  EXPECT_THAT(with.output, MatchesRegex("[0-9]+ [0-9]+ [0-9]+\n"));
  EXPECT_EQ(with.output, without.output);
}

}  // namespace
}  // namespace vestra_test
