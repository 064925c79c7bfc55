#include <algorithm>
#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

using testing::Contains;
using testing::StartsWith;

/// Rows of docs/troubleshooting.md: what a host leaves, and the finding that tells it.
class Troubleshooting : public testing::Test {
 protected:
  std::vector<std::string> found(const Words& words = {"doctor"}) const {
    return findingsOf(place.document(words));
  }

  Place place;
};

TEST_F(Troubleshooting, NoDirectoryMeansThatNoReportWasAskedFor) {
  EXPECT_THAT(found(), Contains("send.none"));
}

TEST_F(Troubleshooting, NoIdentityFileMeansANewProject) {
  makeDirectory(place.inVestra(""));
  EXPECT_THAT(found(), Contains("identity.missing"));
}

TEST_F(Troubleshooting, RulesWithoutAScriptMeanThatNoSupportLibraryWasFound) {
  place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  place.runHost();
  EXPECT_TRUE(exists(place.inVestra("usage_statistics_ext_kelvo.wdm")));
  EXPECT_THAT(found(), testing::IsSupersetOf({"support.absent", "identity.empty"}));
}

TEST_F(Troubleshooting, AGrownIterationMeansNotDue) {
  place.writeIdentity(std::time(nullptr));
  place.runHost();
  EXPECT_THAT(found(), Contains("due.later"));
}

TEST_F(Troubleshooting, AScriptWithoutItsEndMeansNoRegistration) {
  place.setVariable("VESTRA_TESTKIT_NULL", "regid");
  place.runHost();
  EXPECT_THAT(found(), Contains("report.cut"));
}

TEST_F(Troubleshooting, AScriptAsOldAsTheReportWasKept) {
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  place.runHost();
  EXPECT_THAT(found(), Contains("report.kept"));
}

TEST_F(Troubleshooting, NoXmlMeansThatTheToolFailed) {
  place.runHost();
  EXPECT_THAT(found(), Contains("tool.failed"));
}

TEST_F(Troubleshooting, ANewXmlMeansThatAReportWent) {
  place.runHost();
  place.write(place.inVestra("usage_statistics_ext_kelvo.xml"), "<x/>");
  EXPECT_THAT(found(), Contains("report.went"));
}

TEST_F(Troubleshooting, BlanksInTheDirectorySplitTheCommand) {
  makeDirectory(place / "my project");
  const Json document = place.document({"doctor", place / "my project"});
  EXPECT_THAT(findingsOf(document), Contains("project.shell"));
}

TEST_F(Troubleshooting, AnEmptyProjectIdStemsFromAnEmptyIdentity) {
  place.write(place.identity(), "");
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  place.runHost();
  EXPECT_THAT(found(), testing::IsSupersetOf({"identity.id_empty", "report.empty_ids"}));
}

TEST_F(Troubleshooting, AnEmptyRandomIdStemsFromUnusableSettings) {
  makeDirectory(place.settings());
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  place.runHost();
  EXPECT_THAT(found(), testing::IsSupersetOf({"settings.special", "report.empty_ids"}));
}

TEST(TroubleshootingTable, HasNoRowBeyondThose) {
  const std::string document = readFile(DOCUMENTS "/troubleshooting.md");
  const std::size_t begin = document.find("|---|---|---|\n", document.find("| You see |"));
  const std::string table = document.substr(begin, document.find("\n\n", begin) - begin);
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 11);
}

/// Runs a shell command where mounts are its own; only root can.
class OwnMounts : public testing::Test {
 protected:
  OwnMounts() {
    if (run({"unshare", "-m", "true"}).status != 0) {
      isPossible = false;
    }
  }

  std::string mounted(const std::string& command) const {
    return run({"unshare", "-m", "sh", "-c", command}, place.environment(), place.project()).out;
  }

  bool isPossible = true;
  Place place;
};

#define NEEDS_OWN_MOUNTS                                     \
  if (!isPossible) {                                         \
    GTEST_SKIP() << "this user may not mount anything here"; \
  }

TEST_F(OwnMounts, TellAFullDiskOfTheProjectAndOfTheHome) {
  NEEDS_OWN_MOUNTS
  const auto full = [](const std::string& directory) {
    return "mount -t tmpfs -o size=16k none " + directory + " && (cat /dev/zero >" + directory +
           "/fill; true) 2>/dev/null; ";
  };
  const Json document = Json::parse(mounted(full(place.project()) + full(place.home()) + place.inspector() +
                                            " doctor --json " + place.project()));
  EXPECT_THAT(findingsOf(document), testing::IsSupersetOf({"project.full", "settings.full"}))
      << document.dump(1);
}

TEST_F(OwnMounts, TellAReadOnlyProject) {
  NEEDS_OWN_MOUNTS
  const Json document = Json::parse(mounted("mount -t tmpfs -o ro none " + place.project() + " && " +
                                            place.inspector() + " doctor --json " + place.project()));
  EXPECT_THAT(findingsOf(document), Contains("project.readonly"));
  EXPECT_EQ(predictionOf(document)["next_run"], "nothing");
}

/// The evidence for the maker's own machine, and what a host then writes.
TEST_F(OwnMounts, TellWhereTheMakersDomainStands) {
  NEEDS_OWN_MOUNTS
  place.write(place / "resolv.conf", "nameserver 192.0.2.1\n# moved from eng.CALVIX.example in 2024\n");
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  const std::string mount = "mount --bind " + (place / "resolv.conf") + " /etc/resolv.conf && ";
  for (const auto& [switched, isInternal] : {std::pair("", true), std::pair("1", false)}) {
    place.setVariable("CALVIX_VESTRA_INTERNAL_TRANSMIT", switched);
    const Json site = Json::parse(mounted(mount + place.inspector() + " --json"))["site"];
    ASSERT_TRUE(site["evidence"]["resolver_file_counts"].get<bool>());
    EXPECT_EQ(site["internal"], isInternal);
    EXPECT_TRUE(site["internal_without_override"].get<bool>());
    EXPECT_EQ(site["evidence"]["line"], 2);
    EXPECT_EQ(site["evidence"]["column"], 18);
    EXPECT_THAT(mounted(mount + place.host() + " " + place.project() + " KELVO runs 2"), StartsWith("true"));
    EXPECT_EQ(readFile(place.inVestra("kelvo_vestra.tcl")).find("-regid \"VESTRA_TEST_KELVO_REG-42\"") !=
                  std::string::npos,
              isInternal);
    run({"rm", "-r", place.project() + "/vestra"});
  }
}

}  // namespace
}  // namespace vestra_test
