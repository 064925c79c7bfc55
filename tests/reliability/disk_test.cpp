// Disks that are full, read-only or gone, and a machine without a shell. The file systems
// are real: mounts in this process's own namespace.

#include <boost/filesystem.hpp>

#include "reliability/private_mounts.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

/// One page for a file, one for what fills the rest.
constexpr const char* SMALL = "size=8k";

class Disk : public WatchedHost {
 protected:
  void SetUp() override {
    WatchedHost::SetUp();
    if (mounts.whyNot()) {
      GTEST_SKIP() << *mounts.whyNot();
    }
  }

  /// Mounts a file system in a directory's place and puts there what the situation
  /// asks for.
  void mountOver(const std::string& directory, const std::string& options) {
    mounts.mountMemory(directory, options);
    workplace.furnish();
  }

  bool projectIsKnown() const { return GetParam().project == Situation::KNOWN_PROJECT; }

  PrivateMounts mounts;
};

TEST_P(Disk, ThatIsFullLosesNoOlderLineOfTheSettings) {
  mountOver(workplace.home(), SMALL);
  fill(workplace.home());
  expectQuietEnd(runHost(workplace.start()), "answer true");
  EXPECT_THAT(contentOf(workplace.settingsFile()).value_or(""), StartsWith(workplace.settingsBefore()));
  makeRoom(workplace.home());
  expectThatAReportIsSent();
}

TEST_P(Disk, WithoutInodesLosesNoOlderLineOfTheSettings) {
  mountOver(workplace.home(), "nr_inodes=6");
  for (int number = 0; number < 6; ++number) {
    boost::system::error_code full;
    fs::create_directory(workplace.home() + "/full" + std::to_string(number), full);
  }
  expectQuietEnd(runHost(workplace.start()), "answer true");
  EXPECT_THAT(contentOf(workplace.settingsFile()).value_or(""), StartsWith(workplace.settingsBefore()));
}

TEST_P(Disk, ThatIsFullIsNotNoticedInTheProject) {
  mountOver(workplace.project(), projectIsKnown() ? "size=24k" : SMALL);
  fill(workplace.project());
  expectQuietEnd(runHost(workplace.start()), "answer true");
  EXPECT_THAT(contentOf(workplace.identityFile()).value_or("no file"),
              AnyOf("", MatchesRegex(identityText(ANY_TIME, "0", "[28]", "0", ANY_UUID))));
  makeRoom(workplace.project());
  expectThatAReportIsSent();
}

/// A known project needs no new inode but the script's.
class DiskOfANewProject : public Disk {};

TEST_P(DiskOfANewProject, WithoutInodesStopsTheReport) {
  mountOver(workplace.project(), "nr_inodes=1");
  expectQuietEnd(runHost(workplace.start()), "answer false");
  EXPECT_TRUE(namesIn(workplace.project()).empty());
}

TEST_P(Disk, ThatIsReadOnlyGivesTheIdentifierThatIsThere) {
  mountOver(workplace.home(), "");
  mounts.makeReadOnly(workplace.home());
  const std::string before = contentOf(workplace.settingsFile()).value_or("no file");
  HostStart start = workplace.start();
  start.keepsReportFiles = true;
  expectQuietEnd(runHost(start), "answer true");
  EXPECT_EQ(contentOf(workplace.settingsFile()).value_or("no file"), before);
  const bool isThere = GetParam().home == Situation::KNOWN_HOME;
  EXPECT_THAT(readFile(workplace.scriptFile()),
              HasSubstr(isThere ? "-key random_id -value \"3f2a9c4e-" : "-key random_id -value \"\""));
}

TEST_P(Disk, ThatIsReadOnlyStopsTheReport) {
  mountOver(workplace.project(), "");
  mounts.makeReadOnly(workplace.project());
  expectQuietEnd(runHost(workplace.start()), "answer false");
  EXPECT_EQ(contentOf(workplace.identityFile()), workplace.identityBefore());
  mounts.unmount(workplace.project());
  expectThatAReportIsSent();
}

TEST_P(Disk, WithoutAShellCountsTheReportAsSentAndCleansUp) {
  mounts.mountMemory(fs::canonical("/bin/sh").parent_path().string());
  expectQuietEnd(runHost(workplace.start()), "answer true");
  EXPECT_FALSE(exists(workplace.scriptFile()));
  EXPECT_FALSE(exists(workplace.rulesFile()));
  EXPECT_THAT(readFile(workplace.identityFile()),
              MatchesRegex(identityText(ANY_TIME, "0", "[28]", "0", ANY_UUID)));
}

INSTANTIATE_TEST_SUITE_P(EachSituation, Disk, ValuesIn(allSituations()), situationName);

INSTANTIATE_TEST_SUITE_P(NewProjects, DiskOfANewProject,
                         Values(NEW_SIMULATOR,
                                Situation{Vestra::TAVLO, Situation::NEW_PROJECT, Situation::KNOWN_HOME}),
                         situationName);

}  // namespace
}  // namespace vestra_test
