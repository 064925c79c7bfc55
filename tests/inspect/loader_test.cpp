#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A directory ahead of the stand-in's on the loader's path.
class SupportLibrary : public testing::Test {
 protected:
  SupportLibrary() { place.setVariable("LD_LIBRARY_PATH", ahead() + ":" + place.support()); }

  std::string ahead() const { return place / "ahead"; }
  std::string first() const { return ahead() + "/" + LIBRARY_NAME; }
  std::string kit() const { return place.support() + "/" + LIBRARY_NAME; }
  Json document(const Words& words = {"doctor"}) const { return place.document(words); }

  void expectHidden() const {
    const Json seen = document();
    EXPECT_THAT(findingsOf(seen), Contains("support.hidden"));
    EXPECT_EQ(predictionOf(seen)["next_run"], "nothing");
    EXPECT_THAT(place.runHost().out, StartsWith("false"));
  }

  void expectPassed() const {
    const Json seen = document();
    EXPECT_EQ(seen["support"]["chosen"], kit());
    EXPECT_EQ(predictionOf(seen)["next_run"], "reports");
    EXPECT_THAT(place.runHost().out, StartsWith("true"));
  }

  /// Whether the loader itself, asked by a host, opens the kit's library.
  bool loaderOpensKit(const std::string& program) const {
    const Outcome run = place.runProgram({"env", "LD_DEBUG=libs", program, place.project(), "KELVO"});
    return run.err.find("calling init: " + kit()) != std::string::npos;
  }

  Place place;
};

TEST_F(SupportLibrary, IsHiddenByAnEmptyFile) {
  place.write(first(), "");
  expectHidden();
}

TEST_F(SupportLibrary, IsHiddenByAText) {
  place.write(first(), std::string(100, 'x'));
  expectHidden();
}

TEST_F(SupportLibrary, IsHiddenByADirectory) {
  makeDirectory(first());
  expectHidden();
}

TEST_F(SupportLibrary, IsFoundBehindADanglingLink) {
  makeLink(first(), "/nowhere");
  expectPassed();
}

TEST_F(SupportLibrary, IsFoundBehindALibraryForAnotherMachine) {
  std::string other = readFile(kit());
  other[4] = 1;  // 32 bits
  place.write(first(), other);
  expectPassed();
}

TEST_F(SupportLibrary, IsFoundBehindAFileThatMayNotBeRead) {
  place.write(first(), "");
  chmod(first().c_str(), 0);
  expectPassed();
}

/// Such a file ends the host.
TEST_F(SupportLibrary, IsHiddenByACutLibrary) {
  place.write(first(), readFile(kit()).substr(0, 1000));
  EXPECT_THAT(findingsOf(document()), Contains("support.hidden"));
  EXPECT_THAT(place.runHost().out, Not(StartsWith("true")));
}

TEST_F(SupportLibrary, IsTakenFromTheDirectoryForTheProcessor) {
  const std::string better = ahead() + "/glibc-hwcaps/x86-64-v2/" + LIBRARY_NAME;
  place.write(first(), "");
  place.write(better, readFile(kit()));
  EXPECT_EQ(document()["support"]["chosen"], better);
  EXPECT_EQ(predictionOf(document())["next_run"], "reports");
  EXPECT_THAT(place.runHost().out, StartsWith("true"));
}

TEST_F(SupportLibrary, IsTakenWithoutItsEntryPoints) {
  place.write(first(), readFile(place.programs() + "/bin/libvestra.so.1"));
  const Json seen = document();
  EXPECT_THAT(findingsOf(seen), Contains("support.entry"));
  EXPECT_EQ(seen["support"]["entry_points_missing"].size(), 3U);
  EXPECT_EQ(predictionOf(seen)["next_run"], "throws");
  EXPECT_THAT(place.runHost().out, StartsWith("exception"));
}

TEST_F(SupportLibrary, MayLackALibraryOfItsOwn) {
  std::string needy = readFile(kit());
  const std::string need = "libstdc++.so.6";
  needy.replace(needy.find(need), need.size(), "libnothing.so6");
  place.write(first(), needy);
  EXPECT_THAT(findingsOf(document()), Contains("support.needs"));
  EXPECT_THAT(place.runHost().out, StartsWith("false"));
}

TEST_F(SupportLibrary, IsToldToBeTheStandIn) {
  EXPECT_THAT(findingsOf(document()), Contains("support.standin"));
}

TEST_F(SupportLibrary, IsFoundByTheOldTagOfAHostAndNotByTheNewOne) {
  place.setVariable("LD_LIBRARY_PATH", "");
  for (const auto& [host, isFound] : {std::pair(RPATH_HOST, true), std::pair(RUNPATH_HOST, false)}) {
    // The hosts name the build's place of the library, which root's tests alone may read.
    const Outcome seen =
        run({VESTRA_INSPECT, "doctor", "--json", "--host", host}, place.environment(), place.project());
    const Json found = Json::parse(seen.out);
    EXPECT_EQ(!found["support"]["chosen"].is_null(), isFound);
    EXPECT_EQ(testing::Value(findingsOf(found), Contains("support.runpath")), !isFound);
    std::vector<std::string> environment = place.environment();
    environment.emplace_back("LD_DEBUG=libs");
    const Outcome loader = run({host, place.project(), "KELVO"}, environment, place.project());
    EXPECT_EQ(testing::Value(loader.err,
                             testing::ContainsRegex(std::string("calling init: [^\n]*") + LIBRARY_NAME)),
              isFound);
  }
}

TEST_F(SupportLibrary, IsNotLookedForInThePathOfAPrivilegedHost) {
  run({"cp", place.host(), place / "privileged"});
  run({"chmod", "4755", place / "privileged"});
  const Json seen = document({"doctor", "--host", place / "privileged"});
  EXPECT_THAT(findingsOf(seen), Contains("support.secure"));
  EXPECT_TRUE(seen["support"]["chosen"].is_null());
}

TEST_F(SupportLibrary, IsSearchedForAsTheLoaderSearches) {
  EXPECT_TRUE(loaderOpensKit(place.host()));
  EXPECT_EQ(document()["support"]["chosen"], kit());
}

}  // namespace
}  // namespace vestra_test
