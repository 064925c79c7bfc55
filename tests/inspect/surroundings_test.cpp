#include <algorithm>
#include <chrono>
#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"
#include "support/uuid_form.h"

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

TEST_F(Troubleshooting, RulesWithoutAScriptMeanThatNoSupportLibraryWasFound) {
  place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  place.runHost();
  EXPECT_TRUE(exists(place.inVestra("usage_statistics_ext_kelvo.wdm")));
  EXPECT_THAT(found(), testing::IsSupersetOf({"support.absent", "identity.empty"}));
}

TEST_F(Troubleshooting, AScriptWithoutItsEndMeansNoRegistration) {
  place.setVariable("VESTRA_TESTKIT_NULL", "regid");
  place.runHost();
  EXPECT_THAT(found(), Contains("report.cut"));
}

TEST_F(Troubleshooting, AScriptATickAheadOfTheReportsSecondWasKept) {
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  place.runHost();
  place.writeIdentity(NOW);
  const std::string script = place.inVestra("kelvo_vestra.tcl");
  for (const long nanoseconds : {4000000L, 20000000L}) {
    const auto written = std::chrono::seconds(NOW + 1) + std::chrono::nanoseconds(nanoseconds);
    dateFile(script, std::chrono::system_clock::time_point(written));
    const std::string tells = place.document({})["files"][0]["proves"];
    EXPECT_EQ(tells.find("was not due") == std::string::npos, nanoseconds < 10000000) << tells;
  }
}

TEST_F(Troubleshooting, NoXmlMeansThatTheToolFailed) {
  place.runHost();
  EXPECT_THAT(found(), Contains("tool.failed"));
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
    if (run({"unshare", "-m", "-u", "true"}).status != 0) {
      isPossible = false;
    }
  }

  std::string mounted(const std::string& command) const {
    return run({"unshare", "-m", "-u", "sh", "-c", command}, place.environment(), place.project()).out;
  }

  bool isPossible = true;
  Place place;
};

#define NEEDS_OWN_MOUNTS                                     \
  if (!isPossible) {                                         \
    GTEST_SKIP() << "this user may not mount anything here"; \
  }

/// The rows of a full disk: what is predicted there, and what a host then does.
class FullDisk : public OwnMounts {
 protected:
  FullDisk() { place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1"); }

  /// Looks, reports and shows the file, in a directory whose file system was full meanwhile.
  /// @param before  Commands that make what was there before.
  void happen(const std::string& directory, const std::string& before, const std::string& file,
              const std::string& size = "size=24k") {
    const std::string all =
        mounted("mount -t tmpfs -o " + size + " none " + directory + " && " + before + " cat /dev/zero >" +
                directory + "/fill 2>" + (place / "why") + "; " + place.inspector() + " doctor --json " +
                place.project() + "; printf '\\001'; " + place.host() + " " + place.project() +
                " KELVO runs 2; printf '\\001'; cat " + file + " 2>/dev/null");
    const std::size_t answer = all.find('\001');
    const std::size_t left = all.find('\001', answer + 1);
    told = Json::parse(all.substr(0, answer));
    answered = all.substr(answer + 1, left - answer - 1);
    after = all.substr(left + 1);
  }

  Json told;
  std::string answered;
  std::string after;
};

TEST_F(FullDisk, KeepsAProjectsOldRecordOrTheNewOne) {
  NEEDS_OWN_MOUNTS
  const std::string record = "0\\n0\\n5\\n0\\nthe-project\\n";
  happen(place.project(),
         "mkdir " + place.project() + "/vestra; printf '" + record + "' >" + place.identity() + ";",
         place.identity());
  EXPECT_THAT(findingsOf(told), Contains("project.full"));
  EXPECT_EQ(predictionOf(told)["next_run"], "lost");
  EXPECT_FALSE(predictionOf(told)["deletes_identity"].get<bool>());
  EXPECT_THAT(answered, StartsWith("true"));
  EXPECT_THAT(after, testing::MatchesRegex("[0-9]+\n0\n[56]\n0\nthe-project\n"));
}

TEST_F(FullDisk, LeavesANewProjectWithoutAWholeRecord) {
  NEEDS_OWN_MOUNTS
  happen(place.project(), "", place.identity());
  EXPECT_THAT(findingsOf(told), Contains("project.full"));
  EXPECT_EQ(predictionOf(told)["next_run"], "lost");
  EXPECT_THAT(answered, StartsWith("true"));
  EXPECT_EQ(after, "");
}

TEST_F(FullDisk, LeavesTheHomeWithoutAnIdentifier) {
  NEEDS_OWN_MOUNTS
  happen(place.home(), "", place.settings());
  EXPECT_THAT(findingsOf(told), testing::IsSupersetOf({"settings.full", "home.volatile"}));
  EXPECT_EQ(predictionOf(told)["next_run"], "reports");
  EXPECT_TRUE(predictionOf(told)["random_id"].is_null());
  EXPECT_THAT(answered, StartsWith("true"));
  EXPECT_EQ(after, "");
  EXPECT_TRUE(isRandomUuid(valueIn(readFile(place.inVestra("kelvo_vestra.tcl")), "random_id")));
}

TEST_F(OwnMounts, TellAReadOnlyProject) {
  NEEDS_OWN_MOUNTS
  const Json document = Json::parse(mounted("mount -t tmpfs -o ro none " + place.project() + " && " +
                                            place.inspector() + " doctor --json " + place.project()));
  EXPECT_THAT(findingsOf(document), Contains("project.readonly"));
  EXPECT_EQ(predictionOf(document)["next_run"], "nothing");
}

TEST_F(FullDisk, MakesNoProjectWithoutRoomForNames) {
  NEEDS_OWN_MOUNTS
  happen(place.project(), "", place.identity(), "nr_inodes=1");
  EXPECT_THAT(findingsOf(told), Contains("project.full"));
  EXPECT_EQ(predictionOf(told)["next_run"], "nothing");
  EXPECT_THAT(answered, StartsWith("false"));
}

TEST_F(FullDisk, MakesNoIdentifierWithoutRoomForNames) {
  NEEDS_OWN_MOUNTS
  happen(place.home(), "", place.settings(), "nr_inodes=1");
  EXPECT_EQ(predictionOf(told)["random_id"], "");
  EXPECT_THAT(answered, StartsWith("true"));
  EXPECT_EQ(valueIn(readFile(place.inVestra("kelvo_vestra.tcl")), "random_id"), "");
}

TEST_F(OwnMounts, TellThatNothingMayRunWhereTheSupportLibraryLies) {
  NEEDS_OWN_MOUNTS
  const std::string mount = "mount -t tmpfs -o noexec none " + place.elsewhere() + " && cp " +
                            place.support() + "/*.so " + place.elsewhere() + " && ";
  place.setVariable("LD_LIBRARY_PATH", place.elsewhere());
  const Json document = Json::parse(mounted(mount + place.inspector() + " doctor --json"));
  EXPECT_THAT(findingsOf(document), Contains("support.broken"));
  EXPECT_EQ(predictionOf(document)["next_run"], "nothing");
  EXPECT_THAT(mounted(mount + place.host() + " " + place.project() + " KELVO"), StartsWith("false"));
}

TEST_F(OwnMounts, TellThatThereIsNoShell) {
  NEEDS_OWN_MOUNTS
  const Json document =
      Json::parse(mounted("mount -t tmpfs none \"$(dirname \"$(readlink -f /bin/sh)\")\" && exec " +
                          place.inspector() + " doctor --json"));
  EXPECT_THAT(findingsOf(document), Contains("tool.shell"));
}

/// Whether the machine counts as the maker's own, and what a host then answers and writes.
class Site : public OwnMounts {
 protected:
  Site() {
    place.write(place / "resolv.conf", "nameserver 192.0.2.1\n# moved from eng.CALVIX.example in 2024\n");
    place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  }

  void expectOfBoth(const std::string& command, bool isInternal) {
    const Json site = Json::parse(mounted(surroundings + command + place.inspector() + " --json"))["site"];
    EXPECT_EQ(site["internal"], isInternal);
    const std::string host =
        mounted(surroundings + command + place.host() + " " + place.project() + " KELVO runs 2");
    EXPECT_THAT(host, testing::AllOf(StartsWith("true"),
                                     testing::EndsWith(isInternal ? "\ninternal\n" : "\nexternal\n")));
    const std::string script = readFile(place.inVestra("kelvo_vestra.tcl"));
    EXPECT_EQ(script.find("-regid \"VESTRA_TEST_KELVO_REG-42\"") != std::string::npos, isInternal);
    run({"rm", "-r", place.project() + "/vestra"});
  }

  std::string surroundings = "mount --bind " + (place / "resolv.conf") + " /etc/resolv.conf && ";
};

TEST_F(Site, ByAResolverFileIsTheHosts) {
  NEEDS_OWN_MOUNTS
  expectOfBoth("env -u CALVIX_VESTRA_INTERNAL_TRANSMIT ", true);
  expectOfBoth("env CALVIX_VESTRA_INTERNAL_TRANSMIT= ", true);
  expectOfBoth("env CALVIX_VESTRA_INTERNAL_TRANSMIT=1 ", false);
}

TEST_F(Site, ByADomainNameIsTheHosts) {
  NEEDS_OWN_MOUNTS
  surroundings += "echo build.Calvix.Example >/proc/sys/kernel/domainname && ";
  expectOfBoth("", true);
  expectOfBoth("env CALVIX_VESTRA_INTERNAL_TRANSMIT=0 ", false);
  surroundings += "echo elsewhere.example >/proc/sys/kernel/domainname && ";
  expectOfBoth("", false);
}

TEST_F(Site, NamesTheLineAndColumnOfItsEvidence) {
  NEEDS_OWN_MOUNTS
  place.setVariable("CALVIX_VESTRA_INTERNAL_TRANSMIT", "1");
  const Json document = Json::parse(mounted(surroundings + place.inspector() + " --json"));
  EXPECT_THAT(findingsOf(document), testing::IsSupersetOf({"site.internal", "site.override"}));
  const Json& site = document["site"];
  EXPECT_TRUE(site["evidence"]["resolver_file_counts"].get<bool>());
  EXPECT_TRUE(site["internal_without_override"].get<bool>());
  EXPECT_EQ(site["evidence"]["line"], 2);
  EXPECT_EQ(site["evidence"]["column"], 18);
}

/// In both forms of the loader's cache, the library is found where the loader finds it.
TEST_F(OwnMounts, HoldALoadersCacheOfEitherForm) {
  NEEDS_OWN_MOUNTS
  place.setVariable("LD_LIBRARY_PATH", "");
  place.write(place / "conf", "include /etc/ld.so.conf.d/*.conf\n" + place.support() + "\n");
  for (const char* form : {"new", "compat"}) {
    const std::string mount = std::string("/sbin/ldconfig -X -c ") + form + " -f " + (place / "conf") +
                              " -C " + (place / "cache") + " && mount --bind " + (place / "cache") +
                              " /etc/ld.so.cache && ";
    const Json support = Json::parse(mounted(mount + place.inspector() + " --json"))["support"];
    EXPECT_EQ(support["chosen"], place.support() + "/libqvzcommonvestrasupport.so") << form;
    EXPECT_THAT(mounted(mount + place.host() + " " + place.project() + " KELVO runs 2"), StartsWith("true"))
        << form;
    run({"rm", "-r", place.project() + "/vestra"});
  }
}

}  // namespace
}  // namespace vestra_test
