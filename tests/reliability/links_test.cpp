// Symbolic links in each place that the library looks at: to itself, to nothing, and
// to a file or directory elsewhere.

#include <boost/filesystem.hpp>

#include "reliability/watched_host.h"
#include "support/files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

using testing::HasSubstr;

enum class Leads { TO_ITSELF, NOWHERE, ELSEWHERE };

class Link : public WatchedHost {
 protected:
  /// All places, from the roots to the files.
  std::vector<std::string> places() const {
    return {workplace.home() + "/.Calvix",
            workplace.home() + "/.Calvix/Common",
            workplace.home() + "/.Calvix/Common/2018.2",
            workplace.settingsFile(),
            workplace.project(),
            workplace.project() + "/vestra",
            workplace.identityFile(),
            workplace.scriptFile(),
            workplace.rulesFile(),
            workplace.inVestraDirectory("tavlo_vestra.log")};
  }

  void put(const std::string& place, Leads leads) {
    const std::string elsewhere = workplace.home() + "/elsewhere";
    fs::create_directories(fs::path(place).parent_path());
    if (leads == Leads::ELSEWHERE) {
      fs::remove_all(elsewhere);
      moveOrMake(place, elsewhere);
    }
    fs::remove_all(place);
    fs::create_symlink(leads == Leads::TO_ITSELF ? place : elsewhere, place);
  }

  void moveOrMake(const std::string& place, const std::string& elsewhere) {
    if (exists(place)) {
      fs::rename(place, elsewhere);
    } else if (isDirectoryPlace(place)) {
      fs::create_directory(elsewhere);
    } else {
      writeFile(elsewhere, "");
    }
  }

  bool isDirectoryPlace(const std::string& place) const {
    return place == workplace.project() || place == workplace.project() + "/vestra" ||
           (place != workplace.settingsFile() && place.rfind(workplace.home(), 0) == 0);
  }

  HostEnd runWith(const std::string& place, Leads leads) {
    workplace.reset();
    put(place, leads);
    const HostEnd end = runHost(workplace.start());
    EXPECT_FALSE(end.signal) << end.signal.value_or(0);
    EXPECT_EQ(end.descriptorsLost, 0);
    EXPECT_EQ(end.output, "");
    return end;
  }
};

TEST_P(Link, LinkToItselfStopsAReportOnlyOnTheWayToTheIdentity) {
  for (const std::string& place : places()) {
    SCOPED_TRACE(place);
    const bool isOnTheWay = place == workplace.project() || place == workplace.project() + "/vestra" ||
                            place == workplace.identityFile();
    EXPECT_EQ(runWith(place, Leads::TO_ITSELF).outcome, isOnTheWay ? "answer false" : "answer true");
  }
}

TEST_P(Link, LinkToNowhereIsWrittenThroughOrStopsTheReport) {
  for (const std::string& place : places()) {
    SCOPED_TRACE(place);
    const bool isOnTheWay = place == workplace.project() || place == workplace.project() + "/vestra";
    EXPECT_EQ(runWith(place, Leads::NOWHERE).outcome, isOnTheWay ? "answer false" : "answer true");
  }
}

TEST_P(Link, LinkToElsewhereIsFollowedByOpeningAndRemovedByRemoving) {
  for (const std::string& place : places()) {
    SCOPED_TRACE(place);
    EXPECT_EQ(runWith(place, Leads::ELSEWHERE).outcome, "answer true");
    const bool isReportFile = place == workplace.scriptFile() || place == workplace.rulesFile();
    const bool isLog = place == workplace.inVestraDirectory("tavlo_vestra.log");
    if (isReportFile) {
      EXPECT_FALSE(exists(place));
      EXPECT_THAT(readFile(workplace.home() + "/elsewhere"),
                  HasSubstr(place == workplace.scriptFile() ? "vestra_terminate" : "clients"));
    } else if (!isLog) {
      EXPECT_TRUE(fs::is_symlink(place));
      expectThatAReportIsSent();
    }
  }
}

/// In the place of the log, which only the lab tool has.
class LinkToTheLog : public Link {};

TEST_P(LinkToTheLog, LogReplacesALinkWhoseTargetStays) {
  const std::string place = workplace.inVestraDirectory("tavlo_vestra.log");
  put(place, Leads::ELSEWHERE);
  writeFile(workplace.home() + "/elsewhere", "somebody's");
  EXPECT_EQ(runHost(workplace.start()).outcome, "answer true");
  EXPECT_FALSE(fs::is_symlink(place));
  EXPECT_EQ(readFile(workplace.home() + "/elsewhere"), "somebody's");
}

INSTANTIATE_TEST_SUITE_P(EachSituation, Link, testing::ValuesIn(allSituations()), situationName);

INSTANTIATE_TEST_SUITE_P(
    LabTools, LinkToTheLog,
    testing::Values(Situation{Oza::Vestra::TAVLO, Situation::NEW_PROJECT, Situation::NEW_HOME},
                    Situation{Oza::Vestra::TAVLO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME}),
    situationName);

}  // namespace
}  // namespace vestra_test
