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
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

Words at(std::int64_t now, Words words = {}) {
  words.push_back("--now");
  words.push_back(std::to_string(now));
  return words;
}

class Inspector : public testing::Test {
 protected:
  Place place;
};

TEST_F(Inspector, SaysOfAFreshMachineThatEverythingIsDue) {
  const Outcome status = place.inspect(at(NOW, {"--color", "never"}));
  EXPECT_EQ(status.status, 0);
  EXPECT_THAT(status.out, StartsWith(place.project() + ": the next KELVO or TAVLO run will"));
  EXPECT_THAT(status.out, AllOf(HasSubstr("  KELVO, TAVLO   due now (never sent)"),
                                HasSubstr("  KELVO_ALT      due now (never sent)"),
                                HasSubstr("Only looked: nothing was changed, started or sent.")));
  EXPECT_FALSE(exists(place.project() + "/vestra"));
  EXPECT_FALSE(exists(place.home() + "/.Calvix"));
}

TEST_F(Inspector, NamesIdentifiersWithFileAndLine) {
  place.write(place.settings(), "a=b\nRandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n");
  place.writeIdentity(NOW - 100000);
  const Json document = place.document(at(NOW));
  EXPECT_EQ(document["user"]["random_id"]["value"], "3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e");
  EXPECT_EQ(document["user"]["random_id"]["line"], 2);
  EXPECT_EQ(document["project"]["project_id"]["value"], "the-project");
  EXPECT_THAT(place.inspect({}).out, HasSubstr("line 2 of\n"));
}

TEST_F(Inspector, FindsTheNearestProjectUpwards) {
  place.writeIdentity(NOW);
  place.write(place.project() + "/deep/down/x", "");
  Command command = place.asUser({place.inspector(), "--json"});
  const Outcome status = run(command, place.environment(), place.project() + "/deep/down");
  EXPECT_EQ(Json::parse(status.out)["project"]["directory"], place.project());
}

TEST_F(Inspector, KeepsADayAndOneSecondBetweenReports) {
  place.writeIdentity(NOW - 86400);
  Json next = predictionOf(place.document(at(NOW)));
  EXPECT_EQ(next["next_run"], "not_due");
  EXPECT_EQ(next["due_from"]["seconds"], NOW + 1);
  next = predictionOf(place.document(at(NOW + 1)));
  EXPECT_EQ(next["next_run"], "reports");
}

TEST_F(Inspector, KnowsThatOneProductHasADayOfItsOwn) {
  place.writeIdentity(NOW - 10, NOW - 100000);
  const Json document = place.document(at(NOW));
  EXPECT_EQ(predictionOf(document, "TAVLO")["next_run"], "not_due");
  EXPECT_EQ(predictionOf(document, "KELVO_ALT")["next_run"], "reports");
}

TEST_F(Inspector, GivesNoReportBeforeAFutureTimeHasPassed) {
  place.writeIdentity(NOW + 1000);
  const Outcome doctor = place.inspect(at(NOW, {"doctor"}));
  EXPECT_EQ(doctor.status, 1);
  EXPECT_THAT(doctor.out, AllOf(HasSubstr("due.future"), HasSubstr("sed -i '1s/.*/0/'")));
}

TEST_F(Inspector, MendsWhatItSaysItMends) {
  place.write(place.identity(), "0\n0\nx42\n0\nthe-project\n");
  const Json document = place.document({"doctor"});
  ASSERT_THAT(findingsOf(document), Contains("identity.number"));
  for (const Json& finding : document["findings"]) {
    if (finding["id"] == "identity.number") {
      place.runProgram({"sh", "-c", finding["mend"][0].get<std::string>()});
    }
  }
  EXPECT_EQ(readFile(place.identity()), "0\n0\n1\n0\nthe-project\n");
  EXPECT_THAT(findingsOf(place.document({"doctor"})), Not(Contains("identity.number")));
}

TEST_F(Inspector, LeavesWithTheStatusThatFits) {
  EXPECT_EQ(place.inspect({"doctor"}).status, 0);
  place.writeIdentity(std::time(nullptr));
  EXPECT_EQ(place.inspect({"doctor"}).status, 0);
  EXPECT_EQ(place.inspect({"doctor", "--fail-on", "note"}).status, 1);
  place.write(place.identity(), "");
  EXPECT_EQ(place.inspect({"doctor"}).status, 1);
  EXPECT_EQ(place.inspect({"doctor", "--fail-on", "never"}).status, 0);
  EXPECT_EQ(place.inspect({"status"}).status, 0);
  EXPECT_EQ(place.inspect({"--no-such-option"}).status, 2);
  EXPECT_EQ(place.inspect({"--product", "OTHER"}).status, 2);
  EXPECT_EQ(place.inspect({"--host", place / "nothing"}).status, 3);
  EXPECT_EQ(place.inspect({"report", place.identity()}).status, 3);
}

TEST_F(Inspector, SaysWhatItMayNotLookAt) {
  place.writeIdentity(0);
  run({"chmod", "000", place.identity()});
  const Outcome doctor = place.inspect({"doctor"});
  EXPECT_EQ(doctor.status, 3);
  EXPECT_THAT(doctor.err, HasSubstr(place.identity() + " may not be read"));
}

TEST_F(Inspector, LooksWithAnotherHomeAndEnvironment) {
  place.write(place / "other/.Calvix/Common/2018.2/vestra", "RandomID=abc\n");
  EXPECT_EQ(place.document({"--home", place / "other"})["user"]["random_id"]["value"], "abc");
  place.write(place / "environment", "HOME=" + (place / "other") + "\nCALVIX_VESTRA_DEBUG_EXT=0\n");
  const Json document = place.document({"--env", place / "environment"});
  EXPECT_EQ(document["user"]["random_id"]["value"], "abc");
  EXPECT_EQ(document["support"]["chosen"], nullptr);
  EXPECT_TRUE(document["switches"][0]["on"].get<bool>());
}

TEST_F(Inspector, ForetellsThatAMissingSupportLibraryStopsEverything) {
  place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  const Json document = place.document({"doctor"});
  EXPECT_THAT(findingsOf(document), Contains("support.absent"));
  EXPECT_EQ(predictionOf(document)["next_run"], "nothing");
  EXPECT_THAT(place.runHost().out, StartsWith("false"));
  EXPECT_EQ(readFile(place.identity()), "");
}

TEST_F(Inspector, PutsMarksInThePlaceOfWhatIdentifies) {
  place.write(place.settings(), "RandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n");
  place.writeIdentity(std::time(nullptr));
  place.setVariable("USER", "annabell");
  place.runHost("KELVO", {"who", "annabell at home", "plan", "annabellplanning"});
  for (const Words& words : {Words{"--redact"}, Words{"report", "--redact"},
                             Words{"report", "--redact", "--json"}, Words{"doctor", "--redact", "--json"}}) {
    const std::string out = place.inspect(words).out;
    EXPECT_THAT(
        out, AllOf(Not(HasSubstr("3f2a9c4e")), Not(HasSubstr("the-project")), Not(HasSubstr("annabell at")),
                   Not(HasSubstr(place.home() + "/")), Not(IsEmpty())));
  }
  EXPECT_THAT(place.inspect({"report", "--redact"}).out,
              AllOf(HasSubstr("<user-id>"), HasSubstr("<login> at home")));
}

std::string longestLine(const std::string& text) {
  std::string longest;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    const std::string line = text.substr(begin, end - begin);
    longest = line.size() > longest.size() ? line : longest;
    begin = end + 1;
  }
  return longest;
}

TEST_F(Inspector, FitsEightyColumnsAndShowsEachByte) {
  place.writeIdentity(std::time(nullptr));
  place.runHost("KELVO",
                {"escape", "\033[31mred\a", "large", "2", "turned", std::string("a\xE2\x80\xAE") + "b",
                 std::string(200, 'k'), "v", "broken", "\xFF\xFE"});
  std::string script = readFile(place.inVestra("kelvo_vestra.tcl"));
  const std::string small = "-value \"2\"";
  script.replace(script.find(small), small.size(), "-value \"" + std::string(1000000, 'x') + "\"");
  place.write(place.inVestra("kelvo_vestra.tcl"), script);
  for (const Words& words : {Words{}, Words{"report"}, Words{"doctor"}, Words{"--help"}}) {
    const Outcome shown = place.inspect(words);
    EXPECT_LE(longestLine(shown.out).size(), 80U) << longestLine(shown.out);
    EXPECT_EQ(shown.out.find_first_of("\033\a\t\r"), std::string::npos);
  }
  const std::string report = place.inspect({"report"}).out;
  EXPECT_THAT(report,
              AllOf(HasSubstr("\\x1b[31mred\\x07"), HasSubstr("\\xff\\xfe"), Not(HasSubstr("\xE2\x80\xAE"))));
  EXPECT_EQ(place.document({"report"})["reports"][0]["items"].size(), 15U + 6U + 5U);
}

TEST_F(Inspector, ColoursATerminalOnly) {
  const std::string colour = "\033[";
  EXPECT_THAT(place.inspect({}).out, Not(HasSubstr(colour)));
  EXPECT_THAT(place.inspect({"--color", "always"}).out, HasSubstr(colour));
  // Without SHELL, script takes the account's, which lets nobody in.
  const std::string inTerminal = "SHELL=/bin/sh script -qec '" + place.inspector() + " doctor' /dev/null";
  EXPECT_THAT(place.runProgram({"env", "TERM=xterm", "sh", "-c", inTerminal}).out, HasSubstr(colour));
  EXPECT_THAT(place.runProgram({"env", "TERM=xterm", "NO_COLOR=1", "sh", "-c", inTerminal}).out,
              Not(HasSubstr(colour)));
}

TEST_F(Inspector, EndsQuietlyWhenItsReaderHasSeenEnough) {
  const Outcome cut = place.runProgram({"sh", "-c", place.inspector() + " | true"});
  EXPECT_EQ(cut.err, "");
}

}  // namespace
}  // namespace vestra_test
