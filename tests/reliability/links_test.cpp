// Symbolic links in each place that the library looks at: to itself, to nothing, and
// to a file or directory elsewhere.

#include <boost/filesystem.hpp>

#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

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
    return isDirectoryOfTheIdentity(place) ||
           (place != workplace.settingsFile() && place.rfind(workplace.home(), 0) == 0);
  }

  bool isDirectoryOfTheIdentity(const std::string& place) const {
    return place == workplace.project() || place == workplace.project() + "/vestra";
  }

  void expectOutcome(const std::string& place, Leads leads, bool answer) {
    workplace.reset();
    put(place, leads);
    expectQuietEnd(runHost(workplace.start()), answer ? "answer true" : "answer false");
  }
};

TEST_P(Link, ToItselfOrToNowhereStopsAReportOnlyOnTheWayToTheIdentity) {
  for (const std::string& place : places()) {
    SCOPED_TRACE(place);
    const bool isOnTheWay = isDirectoryOfTheIdentity(place);
    expectOutcome(place, Leads::TO_ITSELF, !isOnTheWay && place != workplace.identityFile());
    expectOutcome(place, Leads::NOWHERE, !isOnTheWay);
  }
}

TEST_P(Link, ToElsewhereIsFollowedByOpeningAndRemovedByRemoving) {
  for (const std::string& place : places()) {
    SCOPED_TRACE(place);
    expectOutcome(place, Leads::ELSEWHERE, true);
    const bool isLog = place == workplace.inVestraDirectory("tavlo_vestra.log");
    if (place == workplace.scriptFile() || place == workplace.rulesFile()) {
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

TEST_P(LinkToTheLog, IsReplacedAndItsTargetStays) {
  const std::string place = workplace.inVestraDirectory("tavlo_vestra.log");
  put(place, Leads::ELSEWHERE);
  writeFile(workplace.home() + "/elsewhere", "somebody's");
  EXPECT_EQ(runHost(workplace.start()).outcome, "answer true");
  EXPECT_FALSE(fs::is_symlink(place));
  EXPECT_EQ(readFile(workplace.home() + "/elsewhere"), "somebody's");
}

INSTANTIATE_TEST_SUITE_P(EachSituation, Link, ValuesIn(allSituations()), situationName);

INSTANTIATE_TEST_SUITE_P(LabTools, LinkToTheLog, Values(NEW_LAB_TOOL, KNOWN_LAB_TOOL), situationName);

}  // namespace
}  // namespace vestra_test
