// What is predicted at the borders of the day, and for each shape of a project's record, is what a host
// with its clock at that second then does.

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"

namespace vestra_test {
namespace {

constexpr std::int64_t DAY = 86400;

class Prediction : public testing::Test {
 protected:
  Prediction() { place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1"); }

  Json predict(const std::string& product) const {
    return predictionOf(place.document({"--now", std::to_string(NOW)}), product);
  }

  Outcome runHostNow(const std::string& product) const {
    return place.runProgram({"env", "LD_PRELOAD=" + place.programs() + "/bin/libset_clock.so",
                             "VESTRA_TEST_NOW=" + std::to_string(NOW), place.host(), place.project(), product,
                             "runs", "2"});
  }

  void expectToHappen(const std::string& product) const {
    const Json next = predict(product);
    const Outcome run = runHostNow(product);
    EXPECT_EQ(run.out.rfind("true", 0) == 0, next["next_run"] == "reports") << run.out << run.err;
    const std::string script =
        readFile(place.inVestra(product == "TAVLO" ? "tavlo_vestra.tcl" : "kelvo_vestra.tcl"));
    EXPECT_EQ(valueIn(script, "project_id"), next["project_id"].get<std::string>());
    EXPECT_EQ(valueIn(script, "project_iteration"), next["iteration"].get<std::string>());
    EXPECT_EQ(predict(product)["last"]["seconds"],
              next["next_run"] == "reports" ? Json(NOW) : next["last"]["seconds"]);
  }

  Place place;
};

TEST_F(Prediction, BordersOfTheDayAreTheHosts) {
  for (const std::int64_t last :
       {NOW - DAY - 1, NOW - DAY, NOW - DAY + 1, NOW - 1, NOW, NOW + 1, NOW + DAY, std::int64_t{0},
        std::int64_t{1}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()}) {
    for (const char* product : {"KELVO", "KELVO_ALT", "TAVLO"}) {
      SCOPED_TRACE(std::string(product) + " " + std::to_string(NOW - last));
      place.writeIdentity(last, last);
      expectToHappen(product);
    }
  }
}

TEST_F(Prediction, ADayAndASecondPartReports) {
  place.writeIdentity(NOW - DAY);
  EXPECT_EQ(predict("KELVO")["next_run"], "not_due");
  place.writeIdentity(NOW - DAY - 1);
  EXPECT_EQ(predict("KELVO")["next_run"], "reports");
}

TEST_F(Prediction, EachShapeOfARecordIsTheHosts) {
  for (const char* record :
       {"0\n0\n1\n0\n7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d\n", "0\n0\n2\n1\nthe host's own\n",
        "0\n0\n2\n1\n\n", "0\n0\n2\n0\n\n", "0\n0\n2\n0\n", "0\n0\n2\n", "0\n0\n", "0\n", "", "\n\n\n\n\n",
        " 5\n+6\n 7x\n-1\n x \n", "0\n0\n18446744073709551615\n0\nid\n", "0\n0\n0\n0\n\xC3\xA4\xFF\n",
        "0\n0\n9223372036854775806\n0\nid\nmore\n"}) {
    for (const char* product : {"KELVO", "KELVO_ALT", "TAVLO"}) {
      SCOPED_TRACE(testing::PrintToString(record) + " " + product);
      place.write(place.identity(), record);
      if (predict(product)["next_run"] == "nothing") {
        EXPECT_EQ(runHostNow(product).out.rfind("false", 0), 0U);
        EXPECT_FALSE(exists(place.identity()));
      } else if (predict(product)["project_id"].is_string()) {
        expectToHappen(product);
      }
    }
  }
}

}  // namespace
}  // namespace vestra_test
