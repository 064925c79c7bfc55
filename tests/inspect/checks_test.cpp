// Findings of what no table of damages has: surroundings, rights, and what identifiers hold.

#include <sys/stat.h>

#include <csignal>
#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;

class Doctor : public testing::Test {
 protected:
  std::vector<std::string> found(const Words& more = {}) const {
    Words words = {"doctor"};
    words.insert(words.end(), more.begin(), more.end());
    return findingsOf(place.document(words));
  }

  void report(const std::string& product) const { EXPECT_NE(place.runHost(product).out, ""); }

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

TEST_F(Doctor, MissesAProject) { EXPECT_THAT(found({place / "nowhere"}), Contains("project.missing")); }

TEST_F(Doctor, SaysWhatOthersMayWrite) {
  place.writeIdentity(0);
  chmod(place.inVestra("").c_str(), 0777);
  chmod(place.elsewhere().c_str(), 0777);
  place.setVariable("LD_LIBRARY_PATH", place.elsewhere() + ":" + place.support());
  EXPECT_THAT(found(), IsSupersetOf({"project.shared_writable", "support.writable"}));
}

TEST_F(Doctor, CountsABlankElementOfThePathAsWritable) {
  place.setVariable("LD_LIBRARY_PATH", ":" + place.support());
  EXPECT_THAT(found(), Contains("support.writable"));
}

TEST_F(Doctor, ReadsIdentifiersAsTheInterpreterWould) {
  place.write(place.settings(), "RandomID=$id\n");
  place.write(place.identity(), "0\n0\n5\n0\n[exec id]\n");
  EXPECT_THAT(found(), IsSupersetOf({"identity.id_script", "settings.id_script"}));
}

TEST_F(Doctor, FollowsNoLoop) {
  makeDirectory(place.inVestra(""));
  makeLink(place.identity(), place.identity());
  const Json document = place.document({"doctor"});
  EXPECT_THAT(findingsOf(document), Contains("identity.loop"));
  EXPECT_EQ(predictionOf(document)["next_run"], "nothing");
  EXPECT_EQ(place.runHost().out.rfind("false", 0), 0U);
}

TEST_F(Doctor, SaysWhoseDayItIs) {
  place.writeIdentity(std::time(nullptr));
  report("KELVO");
  report("TAVLO");
  EXPECT_THAT(found(), Contains("due.shared"));
}

TEST_F(Doctor, SeesThatAClockWasSetBack) {
  place.writeIdentity(0);
  EXPECT_THAT(found({"--now", "1000000000"}), Contains("clock.behind"));
}

TEST_F(Doctor, KnowsHomesThatAreNone) {
  place.setVariable("HOME", "");
  EXPECT_THAT(found(), Contains("home.unset"));
  place.setVariable("HOME", "here");
  EXPECT_THAT(found(), Contains("home.relative"));
}

TEST_F(Doctor, TellsWhichVariablesCount) {
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "0");
  place.setVariable("CALVIX_VESTRA_INTERNAL_TRANSMIT", "0");
  EXPECT_THAT(found(), IsSupersetOf({"env.debug", "env.testkit", "site.override"}));
}

TEST_F(Doctor, TellsAReportOfTheMakersOwnMachine) {
  place.writeIdentity(std::time(nullptr));
  report("KELVO");
  const std::string script = place.inVestra("kelvo_vestra.tcl");
  std::string text = readFile(script);
  text.replace(text.find("-regid \"") + 8, 0, "VESTRA_TEST_KELVO_");
  place.write(script, text);
  EXPECT_THAT(found(), Contains("report.marked"));
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
