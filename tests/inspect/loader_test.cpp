// Where --host names the program, the loader is asked for that program's paths, or it is said why not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"

namespace vestra_test {
namespace {

using testing::HasSubstr;

class SupportLibrary : public testing::Test {
 protected:
  Json seenFor(const std::string& host) const {
    // The hosts name the build's place of the library, which root's tests alone may read.
    const Outcome seen =
        run({VESTRA_INSPECT, "doctor", "--json", "--host", host}, place.environment(), place.project());
    return Json::parse(seen.out);
  }

  Place place;
};

TEST_F(SupportLibrary, IsFoundByTheOldTagOfAHostAndNotByTheNewOne) {
  place.setVariable("LD_LIBRARY_PATH", "");
  for (const auto& [host, isFound] : {std::pair(RPATH_HOST, true), std::pair(RUNPATH_HOST, false)}) {
    EXPECT_EQ(seenFor(host)["support"]["state"], isFound ? "found" : "absent");
    std::vector<std::string> environment = place.environment();
    environment.emplace_back("LD_DEBUG=libs");
    const Outcome loader = run({host, place.project(), "KELVO"}, environment, place.project());
    EXPECT_EQ(testing::Value(loader.err,
                             testing::ContainsRegex(std::string("calling init: [^\n]*") + LIBRARY_NAME)),
              isFound);
  }
}

TEST_F(SupportLibrary, IsLookedForFromTheProgramsOwnDirectory) {
  place.setVariable("LD_LIBRARY_PATH", "$ORIGIN/../../support");
  EXPECT_EQ(place.document({})["support"]["state"], "unknown");
  EXPECT_EQ(place.document({"--host", place.host()})["support"]["state"], "found");
  EXPECT_THAT(place.runHost().out, testing::StartsWith("true"));
}

TEST_F(SupportLibrary, CannotBeToldForProgramsThatTheLoaderDoesNotList) {
  place.write(place / "temporary/script", "#!/bin/sh\n");
  place.write(place / "temporary/text", "text");
  run({"cp", place.host(), place / "temporary/privileged"});
  run({"chmod", "4755", place / "temporary/privileged"});
  for (const auto& [host, reason] : {std::pair("script", "is a script"), std::pair("text", "is no program"),
                                     std::pair("privileged", "is set-user-ID")}) {
    const Json seen = seenFor(place / ("temporary/" + std::string(host)));
    EXPECT_EQ(seen["support"]["state"], "unknown");
    EXPECT_THAT(seen["support"]["reason"].get<std::string>(), HasSubstr(reason));
    EXPECT_EQ(predictionOf(seen)["next_run"], "unknown");
  }
}

/// LD_AUDIT would run code, LD_DEBUG_OUTPUT write a file.
TEST_F(SupportLibrary, IsLookedForByTheSearchVariablesAlone) {
  place.write(place / "temporary/environment", "LD_LIBRARY_PATH=" + place.support() +
                                                   "\nLD_AUDIT=" + place.support() + "/" + LIBRARY_NAME +
                                                   "\nLD_DEBUG_OUTPUT=" + (place / "temporary/debug") + "\n");
  EXPECT_EQ(place.document({"--env", place / "temporary/environment"})["support"]["state"], "found");
  EXPECT_EQ(run({"ls", place / "temporary"}).out, "environment\n");
}

}  // namespace
}  // namespace vestra_test
