// Another process changes the directories while a report is under way: before each of
// the host's system calls in turn.

#include <boost/filesystem.hpp>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

// The shell may be making the log meanwhile.
void removeAll(const std::string& path) {
  boost::system::error_code error;
  do {
    fs::remove_all(path, error);
  } while (error == boost::system::errc::directory_not_empty);
}

class MeddledHost : public WatchedHost {
 protected:
  /// Does the deed before each call in turn. Every host must end well, and after `repair`
  /// the next one must report.
  void meddle(const std::function<void()>& deed, const std::function<void()>& repair) {
    const std::size_t calls = callsOfARun().size();
    for (std::size_t number = 0; number < calls; number += STEP) {
      workplace.reset();
      const HostEnd end = runHost(workplace.start(), {Disturbance::MEDDLE, number, 0, deed});
      std::ostringstream what;
      what << "before call " << number << ", " << end.calls.back();
      SCOPED_TRACE(what.str());
      ASSERT_TRUE(end.disturbed);
      EXPECT_FALSE(end.signal) << end.signal.value_or(0);
      EXPECT_THAT(end.outcome, AnyOf("answer true", "answer false", HasSubstr("filesystem_error")));
      EXPECT_EQ(end.descriptorsLost, 0);
      repair();
      workplace.makeDue();
      if (isNewState()) {
        expectThatAReportIsSent();
      }
    }
    EXPECT_GT(calls, 50U);
  }
};

TEST_P(MeddledHost, OutlivesTheRemovalOfTheVestraDirectory) {
  meddle([this] { removeAll(workplace.inVestraDirectory("")); }, [] {});
}

TEST_P(MeddledHost, OutlivesTheRemovalOfTheProject) {
  meddle([this] { removeAll(workplace.project()); }, [this] { fs::create_directories(workplace.project()); });
}

TEST_P(MeddledHost, OutlivesTheRemovalOfTheHome) {
  meddle([this] { removeAll(workplace.home()); }, [this] { fs::create_directories(workplace.home()); });
}

TEST_P(MeddledHost, OutlivesALinkToItselfInTheVestraDirectorysPlace) {
  const std::string vestra = workplace.project() + "/vestra";
  meddle(
      [=] {
        removeAll(vestra);
        fs::create_symlink(vestra, vestra);
      },
      [=] { fs::remove(vestra); });
}

TEST_P(MeddledHost, OutlivesDirectoriesInTheFilesPlaces) {
  const std::vector<std::string> files{workplace.identityFile(), workplace.scriptFile(),
                                       workplace.rulesFile(), workplace.settingsFile()};
  meddle(
      [=] {
        for (const std::string& file : files) {
          removeAll(file);
          writeFile(file + "/somebody's", "");
        }
      },
      [=] {
        for (const std::string& file : files) {
          removeAll(file);
        }
      });
}

TEST_P(MeddledHost, OutlivesAPipeInTheRecordsPlaces) {
  const std::vector<std::string> files{workplace.identityFile(), workplace.settingsFile()};
  meddle(
      [=] {
        for (const std::string& file : files) {
          removeAll(file);
          makeNamedPipe(file);
        }
      },
      [=] {
        for (const std::string& file : files) {
          removeAll(file);
        }
      });
}

INSTANTIATE_TEST_SUITE_P(TwoSituations, MeddledHost, Values(KNOWN_SIMULATOR, NEW_LAB_TOOL), situationName);

}  // namespace
}  // namespace vestra_test
