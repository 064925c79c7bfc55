// Findings that depend on the clock and on running processes.

#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using testing::Contains;
using testing::Not;

class Doctor : public testing::Test {
 protected:
  std::vector<std::string> found(const Words& more = {}) const {
    Words words = {"doctor"};
    words.insert(words.end(), more.begin(), more.end());
    return findingsOf(place.document(words));
  }

  Place place;
};

TEST_F(Doctor, FindsNothingOfThatInAHealthyProject) {
  place.writeIdentity(0);
  EXPECT_THAT(found(),
              testing::AllOf(Not(Contains("project.missing")), Not(Contains("project.shared_writable")),
                             Not(Contains("due.shared")), Not(Contains("clock.behind")),
                             Not(Contains("home.unset")), Not(Contains("home.relative")),
                             Not(Contains("support.writable")), Not(Contains("env.debug"))));
}

TEST_F(Doctor, SeesThatAClockWasSetBack) {
  place.writeIdentity(0);
  EXPECT_THAT(found({"--now", "1000000000"}), Contains("clock.behind"));
}

/// A host in the middle of its report.
class RunningHost : public Doctor {
 protected:
  RunningHost() {
    place.write(place / "waiting/libqvzcommonvestrasupport.so", readFile(WAITING_SUPPORT_LIBRARY));
    place.setVariable("LD_LIBRARY_PATH", place / "waiting");
    host = start(place.asUser({place.host(), place.project(), "KELVO"}), {}, place.environment());
  }
  ~RunningHost() override {
    kill(host, SIGKILL);
    waitFor(host);
  }

  pid_t host = -1;
};

TEST_F(RunningHost, IsSeenWhileItReports) {
  std::vector<std::string> seen;
  while (!testing::Value(seen, Contains("host.running"))) {
    seen = found();
  }
  EXPECT_THAT(findingsOf(place.document({"status"})), Not(Contains("host.running")));
}

}  // namespace
}  // namespace vestra_test
