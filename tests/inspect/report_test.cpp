#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A report that was not due, so that it lies in the project.
class ReportOnDisk : public testing::Test {
 protected:
  void report(const Words& items, const std::string& product = "KELVO") {
    place.writeIdentity(std::time(nullptr));
    place.runHost(product, items);
  }

  Json item(const std::string& key, std::size_t which = 0) {
    const Json document = place.document({"report"});
    for (const Json& each : document["reports"][0]["items"]) {
      if (each["key"] == key && which-- == 0) {
        return each;
      }
    }
    return {};
  }

  std::string script() const { return place.inVestra("kelvo_vestra.tcl"); }

  Place place;
};

TEST_F(ReportOnDisk, IsShownInOrderWithItsHazards) {
  report({"user script", "run.tcl", "top", "$fast", "lib", "C:\\work\\ann", "arg", "[exec id]", "runs", "2",
          "runs", "3"});
  EXPECT_THAT(item("user script")["hazard"].get<std::string>(), HasSubstr("white space"));
  EXPECT_THAT(item("top")["hazard"].get<std::string>(), HasSubstr("dollar sign"));
  EXPECT_THAT(item("lib")["hazard"].get<std::string>(), HasSubstr("backslash"));
  EXPECT_THAT(item("arg")["hazard"].get<std::string>(), HasSubstr("bracket"));
  EXPECT_TRUE(item("runs")["hazard"].is_null());
  EXPECT_FALSE(item("runs")["repeated"].get<bool>());
  EXPECT_TRUE(item("runs", 1)["repeated"].get<bool>());
  const Outcome shown = place.inspect({"report"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(shown.out,
              AllOf(HasSubstr("kelvo\\usage (kelvo)"), HasSubstr("! top"), HasSubstr("the same key again"),
                    HasSubstr("27 items; 4 reach the tool otherwise")));
  EXPECT_EQ(place.inspect({"doctor"}).status, 1);
}

TEST_F(ReportOnDisk, AgreesWithItsChecksumUntilAByteIsAltered) {
  report({"runs", "2"});
  EXPECT_THAT(place.inspect({"report"}).out, HasSubstr("agrees with these items, written in the hour"));
  EXPECT_THAT(findingsOf(place.document({"doctor"})), Not(Contains("report.checksum")));
  std::string text = readFile(script());
  text.replace(text.find("-value \"2\""), 10, "-value \"3\"");
  place.write(script(), text);
  EXPECT_THAT(place.inspect({"report"}).out, HasSubstr("does not agree: altered afterwards"));
  EXPECT_THAT(findingsOf(place.document({"doctor"})), Contains("report.checksum"));
}

TEST_F(ReportOnDisk, AgreesForTheLabToolToo) {
  report({"probes", "4"}, "TAVLO");
  EXPECT_TRUE(place.document({"report"})["reports"][0]["checksum"]["agrees"].get<bool>());
  EXPECT_EQ(place.document({"report"})["reports"][0]["product"], "TAVLO");
}

TEST_F(ReportOnDisk, MarksWhatGivesItsUserAway) {
  place.setVariable("USER", "ann");
  report({"owner", "by ann", "task", "planning", "where", place.home() + "/x", "mail", "a.b@calvix.example"});
  EXPECT_EQ(item("owner")["personal"], Json({"your login name"}));
  EXPECT_EQ(item("task")["personal"], Json::array());
  EXPECT_EQ(item("where")["personal"], Json({"your home directory"}));
  EXPECT_EQ(item("mail")["personal"], Json({"an e-mail address"}));
  EXPECT_THAT(findingsOf(place.document({"doctor"})), Contains("report.personal"));
}

TEST_F(ReportOnDisk, IsReadAsFarAsItGoesWhereverItIsCut) {
  report({"top", "$fast", "runs", "2"});
  const std::string text = readFile(script());
  for (std::size_t length = 0; length < text.size(); length += 97) {
    place.write(script(), text.substr(0, length));
    const Json cut = place.document({"report"});
    EXPECT_EQ(cut["reports"].size(), 1U) << length;
    EXPECT_FALSE(cut["reports"][0]["complete"].get<bool>()) << length;
  }
  EXPECT_THAT(findingsOf(place.document({"doctor"})), Contains("report.cut"));
}

TEST_F(ReportOnDisk, IsShownFromAFileOfItsOwn) {
  report({"runs", "2"});
  place.write(place / "kept.tcl", readFile(script()));
  const Json document = place.document({"report", place / "kept.tcl"});
  EXPECT_EQ(document["reports"][0]["registration"], "REG-42");
  EXPECT_EQ(document["reports"][0]["vestra_directory"], place.inVestra(""));
}

TEST_F(ReportOnDisk, IsMissedInSoManyWords) {
  const Outcome none = place.inspect({"report"});
  EXPECT_EQ(none.status, 0);
  EXPECT_THAT(none.out, HasSubstr("no report lies here"));
}

}  // namespace
}  // namespace vestra_test
