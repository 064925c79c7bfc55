// What another user who may write in a project can do to its hosts.

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

#include <boost/filesystem.hpp>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"
#include "support/child_process.h"
#include "support/files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

constexpr uid_t NOBODY = 65534;

/// Acts as user 65534 between the last system call before the shell is started and that start.
class OtherUser : public WatchedHost {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can act for two users";
    }
    if (SANITIZED) {
      GTEST_SKIP() << "a sanitizer makes system calls of its own, not the same in each run";
    }
    WatchedHost::SetUp();
  }

  /// Runs a host of root's after `prepare`. The design tool prints the script and copies it.
  HostEnd runWhileOtherUser(const std::function<void()>& prepare, const std::function<void()>& acts) {
    const std::size_t call = startOfTheShell();
    workplace.reset();
    fs::permissions(fs::path(workplace.home()).parent_path(), fs::all_all);
    prepare();
    HostStart start = workplace.start();
    start.designTool = "sh -c 'tee " + executed() + " <$4' tool";
    return runHost(start, {Disturbance::MEDDLE, call, 0, [&] {
                             asOrdinaryUser([&] {
                               acts();
                               return "";
                             });
                           }});
  }

  std::string executed() const { return workplace.home() + "/executed"; }

 private:
  std::size_t startOfTheShell() {
    const std::vector<SystemCall> calls = callsOfARun();
    const auto start = std::find_if(calls.begin(), calls.end(), [](const SystemCall& call) {
      return call.number == SYS_clone3 || call.number == SYS_clone || call.number == SYS_vfork;
    });
    EXPECT_NE(start, calls.end());
    return static_cast<std::size_t>(start - calls.begin());
  }
};

TEST_P(OtherUser, WhoMayWriteInVestraCanExchangeTheScript) {
  const std::string theirs = workplace.inVestraDirectory("theirs");
  const HostEnd end =
      runWhileOtherUser([&] { fs::permissions(workplace.inVestraDirectory(""), fs::all_all); },
                        [&] {
                          writeFile(theirs, "their script");
                          fs::rename(theirs, workplace.scriptFile());
                        });
  EXPECT_EQ(end.outcome, "answer true");
  EXPECT_EQ(readFile(executed()), "their script");
}

TEST_P(OtherUser, WhoOwnsTheProjectCanExchangeVestra) {
  const HostEnd end =
      runWhileOtherUser([&] { ASSERT_EQ(chown(workplace.project().c_str(), NOBODY, NOBODY), 0); },
                        [&] {
                          fs::rename(workplace.inVestraDirectory(""), workplace.project() + "/roots");
                          writeFile(workplace.scriptFile(), "their script");
                        });
  EXPECT_EQ(end.outcome, "answer true");
  EXPECT_EQ(readFile(executed()), "their script");
}

/// The lab tool only, whose output goes to a log.
class OtherUsersLink : public OtherUser {};

TEST_P(OtherUsersLink, InTheLogsPlaceIsFollowedByTheShell) {
  const std::string roots = workplace.home() + "/roots";
  const HostEnd end = runWhileOtherUser(
      [&] {
        writeFile(roots, "roots text");
        fs::permissions(roots, fs::owner_read | fs::owner_write);
        fs::permissions(workplace.inVestraDirectory(""), fs::all_all);
      },
      [&] { fs::create_symlink(roots, workplace.inVestraDirectory("tavlo_vestra.log")); });
  EXPECT_EQ(end.outcome, "answer true");
  EXPECT_EQ(readFile(roots), readFile(executed()));
}

constexpr Situation SIMULATOR{Oza::Vestra::KELVO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME};
constexpr Situation LAB_TOOL{Oza::Vestra::TAVLO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME};

INSTANTIATE_TEST_SUITE_P(KnownProject, OtherUser, testing::Values(SIMULATOR, LAB_TOOL), situationName);
INSTANTIATE_TEST_SUITE_P(KnownProject, OtherUsersLink, testing::Values(LAB_TOOL), situationName);

}  // namespace
}  // namespace vestra_test
