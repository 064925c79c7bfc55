#include <unistd.h>

#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"

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
  EXPECT_THAT(status.out, StartsWith(place.project() + "\n  KELVO          due now\n"
                                                       "  KELVO_ALT      due now\n"
                                                       "  TAVLO          due now\n"
                                                       "Only looked: nothing was changed or sent. "));
  EXPECT_THAT(status.out, HasSubstr("vestra-inspect list DIR"));
  EXPECT_THAT(status.out, HasSubstr("none turns reports off"));
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
  EXPECT_THAT(place.inspect({}).out, HasSubstr(", line 2\n"));
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

TEST_F(Inspector, NamesTheSentCopyBesideADeletedIdentity) {
  place.write(place.inVestra("usage_statistics_ext_kelvo.xml"), "<x/>");
  EXPECT_THAT(place.inspect({"--product", "KELVO"}).out,
              HasSubstr("no report is recorded as handed over; xml of "));
}

TEST_F(Inspector, SaysWhoseRightsItTested) {
  EXPECT_THAT(place.inspect({}).out, HasSubstr("  rights         those of user 65534 were tested"));
}

/// Root sees what root may do, and by --as what the user may do.
TEST_F(Inspector, TestsTheRightsOfAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "--as requires root";
  }
  place.writeIdentity(0);
  run({"chmod", "400", place.identity()});
  const auto asRoot = [&](const Words& more) {
    Words words = {place.inspector(), "status", "--home", place.home(), place.project(), "--json"};
    words.insert(words.end(), more.begin(), more.end());
    return Json::parse(run(words, place.environment()).out);
  };
  EXPECT_EQ(predictionOf(asRoot({}))["next_run"], "reports");
  const Json seen = asRoot({"--as", "65534"});
  EXPECT_EQ(predictionOf(seen)["next_run"], "nothing");
  EXPECT_EQ(seen["as"]["uid"], 65534);
  EXPECT_THAT(run({place.inspector(), "--home", place.home(), place.project()}, place.environment()).out,
              HasSubstr("--as tests"));
  EXPECT_EQ(place.inspect({"--as", "root"}).status, 3);
}

TEST_F(Inspector, ListsProjectsByTheirLastReport) {
  place.writeIdentity(NOW - 10);
  place.write(place.elsewhere() + "/later/vestra/.kelvo_vestrra.info",
              std::to_string(NOW - 5) + "\n0\n7\n0\nid\n");
  place.write(place.elsewhere() + "/corrupt/vestra/.kelvo_vestrra.info", "abc\n");
  makeLink(place.elsewhere() + "/link", place.project());
  makeDirectory(place.elsewhere() + "/closed");
  place.giveToUser();
  run({"chmod", "0", place.elsewhere() + "/closed"});
  const Json list = place.document(at(NOW, {"list", place.elsewhere(), place.project()}));
  ASSERT_EQ(list["projects"].size(), 3U);
  EXPECT_EQ(list["projects"][0]["directory"], place.elsewhere() + "/later");
  EXPECT_EQ(list["projects"][0]["attempts"], "6");
  EXPECT_EQ(list["projects"][1]["directory"], place.project());
  EXPECT_EQ(list["projects"][2]["problems"], Json({"identity.number"}));
  EXPECT_EQ(list["unreadable"], 1);
  EXPECT_THAT(place.inspect(at(NOW, {"list", place.elsewhere()})).out,
              AllOf(StartsWith("2 projects; 1 directory could not be read\n"), HasSubstr("; attempts 6")));
}

/// What is larger than any record is not read whole.
TEST_F(Inspector, ShowsOfALargeRecordTheBeginning) {
  std::string record = "0\n0\n5\n0\n";
  record.resize(100000000, 'x');
  place.write(place.identity(), record);
  for (const Words& words : {Words{"status"}, Words{"doctor"}, Words{"doctor", "--json"}}) {
    EXPECT_LT(place.inspect(words).out.size(), 1000000U);
  }
}

TEST_F(Inspector, SaysThatItsOutputCannotBeWritten) {
  for (const char* output : {">/dev/full", ">&-"}) {
    const Outcome shown = place.runProgram({"sh", "-c", place.inspector() + " " + output});
    EXPECT_EQ(shown.status, 3) << output;
    EXPECT_THAT(shown.err, HasSubstr("the output cannot be written")) << output;
  }
}

TEST_F(Inspector, EscapesWhatATerminalObeysInDocumentsAndComplaints) {
  place.writeIdentity(std::time(nullptr));
  const std::string red = std::string("\xC2\x9B") + "31m";
  place.runHost("KELVO", {"c1", red, "del", "\x7F", "turned", "\xE2\x80\xAE"});
  const std::string report = place.inspect({"report", "--json"}).out;
  EXPECT_THAT(report, AllOf(HasSubstr("\\u009b31m"), HasSubstr("\\u007f"), HasSubstr("\\u202e")));
  EXPECT_EQ(place.inspect({"\033[31m"}).err.find('\033'), std::string::npos);
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
  EXPECT_EQ(place.inspect({"report", "/nonexistent"}).status, 3);
  EXPECT_EQ(place.inspect({"statsu"}).status, 2);
  EXPECT_EQ(place.inspect({"status", place.project(), place.project()}).status, 2);
  EXPECT_EQ(place.inspect({"--now", "9223372036854775807"}).status, 2);
  EXPECT_EQ(place.inspect({"status", "--product", "KELVO", place.project()}).status, 0);
  EXPECT_EQ(place.inspect({"status", place.project(), "--product", "KELVO"}).status, 0);
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

TEST_F(Inspector, PredictsThatAMissingSupportLibraryStopsEverything) {
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
              AllOf(HasSubstr("<random_id>"), HasSubstr("<login> at home")));
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
