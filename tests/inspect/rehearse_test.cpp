#include <sys/stat.h>

#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/place.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A known user and project, and a tool whose start leaves a trace.
class Rehearsal : public testing::Test {
 protected:
  Rehearsal() {
    place.write(place.settings(), "RandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n");
    place.writeIdentity(std::time(nullptr) - 100000);
    place.write(place / "tool", "#!/bin/sh\necho started >> " + started() + "\n");
    chmod((place / "tool").c_str(), 0755);
    place.setVariable("VESTRA_TESTKIT_EXEC_PATH", place / "tool");
    place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
    place.giveToUser();
  }

  std::string started() const { return place / "temporary/started"; }
  Words host(const std::string& product = "KELVO") const {
    return {place.host(), place.project(), product, "runs", "2"};
  }
  Words openingHost() const {
    return {place.programs() + "/bin/opening_host", place.programs() + "/bin/libvestra.so.1",
            place.project()};
  }

  Outcome rehearse(const Words& program, Words words = {}) const {
    words.insert(words.end(), {"rehearse", "--"});
    words.insert(words.end(), program.begin(), program.end());
    return place.inspect(words);
  }

  /// What the only rehearsal so far kept.
  std::string kept(const std::string& name) const {
    for (const std::string& each : namesIn(place / "temporary")) {
      const std::string file = place / "temporary/" + each + "/1/" + name;
      if (each.rfind("vestra-rehearsal-", 0) == 0 && exists(file)) {
        return readFile(file);
      }
    }
    return "(nothing)";
  }

  void forgetRehearsals() const {
    run({"sh", "-c", "rm -rf " + (place / "temporary/") + "vestra-rehearsal-*"});
  }

  /// Both in one hour, which is in the script.
  void expectToBeTheRealRun(const Words& program, const std::string& script) {
    const std::string identity = exists(place.identity()) ? readFile(place.identity()) : "";
    const std::string before = place.snapshot();
    for (bool sameHour = false; !sameHour;) {
      forgetRehearsals();
      const std::time_t hour = std::time(nullptr) / 3600;
      const Outcome rehearsed = rehearse(program);
      EXPECT_EQ(place.snapshot(), before);
      EXPECT_FALSE(exists(started()));
      const Outcome real = place.runProgram(program);
      EXPECT_EQ(rehearsed.out, real.out) << rehearsed.err;
      EXPECT_EQ(rehearsed.status, real.status) << rehearsed.err;
      sameHour = std::time(nullptr) / 3600 == hour;
      if (sameHour) {
        EXPECT_EQ(kept(script),
                  exists(place.inVestra(script)) ? readFile(place.inVestra(script)) : "(nothing)");
        EXPECT_THAT(rehearsed.err, HasSubstr("settings and identity file are as before"));
      } else {
        place.write(place.identity(), identity);
      }
    }
  }

  Place place;
};

/// The two example hosts, with what lies in a project's way.
struct Example {
  std::string name;
  std::string program;
  std::string script;
};

class EachExampleHost : public Rehearsal, public testing::WithParamInterface<Example> {
 protected:
  /// The example finds its library by the path.
  void find(const std::string& support) {
    place.setVariable("LD_LIBRARY_PATH", support + ":" + place.programs() + "/bin");
  }

  void expectToBeTheRealRun() {
    Rehearsal::expectToBeTheRealRun({place.programs() + "/bin/" + GetParam().program, place.project()},
                                    GetParam().script);
  }
};

TEST_P(EachExampleHost, WritesItsReportAsItWasRehearsed) {
  find(place.support());
  expectToBeTheRealRun();
  EXPECT_EQ(readFile(started()), "started\n");
  EXPECT_THAT(readFile(place.inVestra(GetParam().script)), HasSubstr("-key project_iteration -value \"5\""));
}

TEST_P(EachExampleHost, IsNotDueAsItWasRehearsed) {
  find(place.support());
  place.writeIdentity(std::time(nullptr));
  expectToBeTheRealRun();
  EXPECT_FALSE(exists(started()));
}

TEST_P(EachExampleHost, FindsNoSupportLibraryAsItWasRehearsed) {
  find("/nowhere");
  expectToBeTheRealRun();
  EXPECT_FALSE(exists(place.inVestra(GetParam().script)));
}

INSTANTIATE_TEST_SUITE_P(Examples, EachExampleHost,
                         testing::Values(Example{"Simulator", "simulator", "kelvo_vestra.tcl"},
                                         Example{"LabTool", "lab_tool", "tavlo_vestra.tcl"}),
                         [](const auto& test) { return test.param.name; });

TEST_F(Rehearsal, HoldsAHostThatOpensTheLibraryItself) {
  expectToBeTheRealRun(openingHost(), "kelvo_vestra.tcl");
}

TEST_F(Rehearsal, KeepsAReportThatIsNotDue) {
  place.writeIdentity(std::time(nullptr));
  expectToBeTheRealRun(host(), "kelvo_vestra.tcl");
  EXPECT_FALSE(exists(started()));
}

TEST_F(Rehearsal, ThrowsWhatTheRealRunThrows) {
  place.setVariable("VESTRA_TESTKIT_NULL", "regid");
  expectToBeTheRealRun(host(), "kelvo_vestra.tcl");
  place.writeIdentity(std::time(nullptr) - 100000);
  expectToBeTheRealRun(host("TAVLO"), "tavlo_vestra.tcl");
}

TEST_F(Rehearsal, AnswersFalseWithoutASupportLibrary) {
  place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  expectToBeTheRealRun(host(), "kelvo_vestra.tcl");
}

TEST_F(Rehearsal, AnswersFalseForADamagedIdentity) {
  place.write(place.identity(), "abc\n");
  const std::string before = place.snapshot();
  EXPECT_THAT(rehearse(host()).out, StartsWith("false\n"));
  EXPECT_EQ(place.snapshot(), before);
}

TEST_F(Rehearsal, TellsWhatTheShellWouldHaveBeenGiven) {
  const Outcome rehearsed = rehearse(host("TAVLO"));
  EXPECT_EQ(kept("command"), (place / "tool") + " -mode batch -source " + place.inVestra("tavlo_vestra.tcl") +
                                 " -notrace  > " + place.inVestra("tavlo_vestra.log") + " 2>&1");
  EXPECT_THAT(rehearsed.err,
              AllOf(HasSubstr("held back one report of TAVLO"), HasSubstr("would have been handed over now"),
                    HasSubstr("number 5;"), HasSubstr("registration \"REG-42\"")));
  EXPECT_TRUE(Json::parse(kept("report.json"))["complete"].get<bool>());
}

TEST_F(Rehearsal, IsShownByReport) {
  rehearse(host());
  const Outcome folders =
      place.runProgram({"sh", "-c", "echo " + (place / "temporary/") + "vestra-rehearsal-*/1"});
  const std::string folder = folders.out.substr(0, folders.out.find('\n'));
  EXPECT_TRUE(place.document({"report", folder})["reports"][0]["checksum"]["agrees"].get<bool>());
}

TEST_F(Rehearsal, MakesNothingOnAFreshMachine) {
  run({"rm", "-r", place.home() + "/.Calvix", place.project() + "/vestra"});
  const std::string before = place.snapshot();
  const Outcome rehearsed = rehearse(host());
  EXPECT_THAT(rehearsed.out, StartsWith("true\nhome " + place.home()));
  EXPECT_THAT(rehearsed.err,
              AllOf(HasSubstr("project_id is an example"), HasSubstr("random_id is an example")));
  EXPECT_EQ(place.snapshot(), before);
}

TEST_F(Rehearsal, WritesADocumentAloneToItsOutput) {
  const Outcome rehearsed = rehearse(host(), {"--json"});
  const Json document = Json::parse(rehearsed.out);
  const Json& report = document["rehearsed"][0];
  EXPECT_EQ(document["status"], 0);
  EXPECT_EQ(document["leaked"], Json::array());
  EXPECT_EQ(report["outcome"], "reports");
  EXPECT_EQ(report["directory"], place.project());
  EXPECT_EQ(report["report"]["registration"], "REG-42");
  EXPECT_EQ(report["examples"], Json::array());
  EXPECT_THAT(rehearsed.err, StartsWith("true\nhome " + place.home()));
}

TEST_F(Rehearsal, TellsInADocumentWhatWasThrown) {
  place.setVariable("VESTRA_TESTKIT_NULL", "regid");
  const Json report = Json::parse(rehearse(host(), {"--json"}).out)["rehearsed"][0];
  EXPECT_EQ(report["outcome"], "throws");
  EXPECT_THAT(report["exception"].get<std::string>(), HasSubstr("null"));
}

TEST_F(Rehearsal, PutsMarksInThePlaceOfWhatIdentifies) {
  run({"rm", "-r", place.home() + "/.Calvix"});
  for (const Words& words : {Words{"--redact"}, Words{"--redact", "--json"}}) {
    const Outcome rehearsed =
        rehearse({place.host(), place.project(), "KELVO", "at", place.home() + "/x"}, words);
    const std::string told = words.size() == 1 ? rehearsed.err : rehearsed.out;
    EXPECT_THAT(told, AllOf(HasSubstr("held back one report of KELVO"), Not(HasSubstr("the-project")),
                            Not(HasSubstr(place.home() + "/"))));
    EXPECT_THAT(kept("kelvo_vestra.tcl"), HasSubstr("the-project"));
    EXPECT_THAT(told, Not(HasSubstr(valueIn(kept("kelvo_vestra.tcl"), "random_id"))));
    forgetRehearsals();
  }
}

TEST_F(Rehearsal, GivesUpOnAReportThatTakesTooLong) {
  place.write(place / "waiting/libqvzcommonvestrasupport.so", readFile(WAITING_SUPPORT_LIBRARY));
  place.setVariable("LD_LIBRARY_PATH", place / "waiting");
  place.setVariable("VESTRA_REHEARSAL_LIMIT", "200");
  const std::string before = place.snapshot();
  const Outcome rehearsed = rehearse(host());
  EXPECT_EQ(rehearsed.status, 124);
  EXPECT_THAT(rehearsed.out, StartsWith("false\n"));
  EXPECT_THAT(rehearsed.err, HasSubstr("could not be rehearsed: no answer within the time limit"));
  EXPECT_EQ(place.snapshot(), before);
}

TEST_F(Rehearsal, RehearsesEachReportOfAHostByItself) {
  place.setVariable("SEND_TWICE", "1");
  const std::string before = place.snapshot();
  const Outcome rehearsed = rehearse(host());
  EXPECT_THAT(rehearsed.out, StartsWith("true\ntrue\n"));
  EXPECT_THAT(rehearsed.err, HasSubstr("each was rehearsed by itself"));
  EXPECT_EQ(place.snapshot(), before);
}

TEST_F(Rehearsal, StartsNothingButTheHost) {
  Words words = {"strace",          "-f",       "-qq", "-e", "trace=execve", "-o", place / "temporary/trace",
                 place.inspector(), "rehearse", "--"};
  for (const std::string& word : host()) {
    words.push_back(word);
  }
  EXPECT_THAT(place.runProgram(words).out, StartsWith("true"));
  const std::string trace = readFile(place / "temporary/trace");
  std::size_t starts = 0;
  for (std::size_t at = trace.find("execve("); at != std::string::npos; at = trace.find("execve(", at + 1)) {
    ++starts;
  }
  EXPECT_EQ(starts, 2U) << trace;
}

TEST_F(Rehearsal, LeavesTheHostItsStatusAndItsWords) {
  EXPECT_EQ(rehearse({"sh", "-c", "exit 7"}).status, 7);
  EXPECT_EQ(rehearse({"sh", "-c", "kill -9 $$"}).status, 137);
  EXPECT_EQ(rehearse({"echo", "--json", "--", "-x"}).out, "--json -- -x\n");
  EXPECT_EQ(rehearse({place / "nothing"}).status, 127);
  EXPECT_EQ(rehearse({place.project()}).status, 126);
  EXPECT_EQ(rehearse({}).status, 125);
}

/// Hosts that cannot be held back are not started.
class Unholdable : public Rehearsal {
 protected:
  void expectRefused(const std::string& program, const std::string& reason) {
    const std::string before = place.snapshot();
    const Outcome rehearsed = rehearse({program, place.project(), "KELVO", "runs", "2"});
    EXPECT_EQ(rehearsed.status, 125);
    EXPECT_THAT(rehearsed.err, AllOf(HasSubstr(reason), HasSubstr("It was not started")));
    EXPECT_EQ(rehearsed.out, "");
    EXPECT_EQ(place.snapshot(), before);
  }
};

TEST_F(Unholdable, HostsWithOtherRightsAreRefused) {
  run({"cp", place.host(), place / "privileged"});
  run({"chmod", "4755", place / "privileged"});
  expectRefused(place / "privileged", "set-user-ID");
}

TEST_F(Unholdable, StaticHostsAreRefused) {
  std::string program = readFile(place.host());
  // The second program header is the one that names the loader.
  ASSERT_EQ(program[64 + 56], 3);
  program[64 + 56] = 0;
  place.write(place / "static", program);
  chmod((place / "static").c_str(), 0755);
  expectRefused(place / "static", "static");
}

TEST_F(Rehearsal, HasASecondBeltWhereAStartScriptLosesTheShim) {
  const Words program = {"sh", "-c",
                         "unset LD_PRELOAD; exec " + place.host() + " " + place.project() + " KELVO runs 2",
                         place.project()};
  const Outcome rehearsed = rehearse(program);
  EXPECT_EQ(rehearsed.status, 124);
  EXPECT_THAT(rehearsed.err, AllOf(HasSubstr("caught a report"), HasSubstr("LEAKED")));
  EXPECT_FALSE(exists(started()));
  EXPECT_THAT(kept("kelvo_vestra.tcl"), HasSubstr("-key runs -value \"2\""));
}

TEST_F(Rehearsal, SaysThatAReportLeaked) {
  const Words program = {"sh", "-c",
                         "unset LD_PRELOAD; LD_LIBRARY_PATH=" + place.support() + " exec " + place.host() +
                             " " + place.project() + " KELVO runs 2",
                         place.project()};
  const Outcome rehearsed = rehearse(program);
  EXPECT_EQ(rehearsed.status, 124);
  EXPECT_THAT(rehearsed.err,
              AllOf(HasSubstr("LEAKED: your program reported for real"), Not(HasSubstr("as before"))));
  EXPECT_EQ(readFile(started()), "started\n");
}

}  // namespace
}  // namespace vestra_test
