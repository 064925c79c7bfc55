// Findings that depend on the clock and on running processes.

#include <csignal>
#include <regex>
#include <set>

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
  EXPECT_THAT(found(), testing::AllOf(Not(Contains("project.missing")),
                                      Not(Contains("project.shared_writable")), Not(Contains("clock.behind")),
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

/// The texts in a table's cell that stand in backquotes, behind the row's subject.
void addNames(const std::string& subject, const std::string& cell, std::set<std::string>& names) {
  const std::regex name("`([a-z_.]+)`");
  for (std::sregex_iterator found(cell.begin(), cell.end(), name); found != std::sregex_iterator(); ++found) {
    names.insert(subject + (*found)[1].str());
  }
}

TEST(Findings, AreThoseThatTheDocumentsList) {
  std::set<std::string> problems;
  std::set<std::string> others;
  const std::string catalogue = readFile(CATALOGUE);
  const std::regex check("\\{\"([a-z_.]+)\",\\s*([PWN]),");
  for (std::sregex_iterator found(catalogue.begin(), catalogue.end(), check); found != std::sregex_iterator();
       ++found) {
    ((*found)[2] == "P" ? problems : others).insert((*found)[1]);
  }
  std::set<std::string> listedProblems;
  std::set<std::string> listedOthers;
  const std::string document = readFile(DOCUMENTS "/troubleshooting.md");
  const std::string list = document.substr(document.find("## The findings of the doctor"));
  const std::regex row("\\| (?:`([a-z]+\\.)`|others) \\|([^|]*)\\|([^|]*)\\|");
  for (std::sregex_iterator found(list.begin(), list.end(), row); found != std::sregex_iterator(); ++found) {
    addNames((*found)[1], (*found)[2], listedProblems);
    addNames((*found)[1], (*found)[3], listedOthers);
  }
  EXPECT_GT(problems.size(), 20U);
  EXPECT_EQ(listedProblems, problems);
  EXPECT_EQ(listedOthers, others);
}

}  // namespace
}  // namespace vestra_test
