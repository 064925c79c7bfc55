#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <boost/filesystem/operations.hpp>

#include "inspect/place.h"
#include "support/files.h"
#include "support/special_files.h"

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

  /// A program that names no loader.
  std::string staticProgram() const {
    std::string program = readFile(place.host());
    // The second program header is the one that names the loader.
    EXPECT_EQ(program[64 + 56], 3);
    program[64 + 56] = 0;
    place.write(place / "static", program);
    chmod((place / "static").c_str(), 0755);
    return place / "static";
  }

  /// Both in one hour, which is in the script.
  void expectToBeTheRealRun(const Words& program, const std::string& script) {
    boost::system::error_code isNone;
    const std::string identity =
        boost::filesystem::is_regular_file(place.identity(), isNone) ? readFile(place.identity()) : "";
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
  EXPECT_THAT(rehearsed.err, AllOf(HasSubstr("intercepted one report of TAVLO"),
                                   HasSubstr("would have been handed over now"), HasSubstr("number 5;"),
                                   HasSubstr("registration \"REG-42\"")));
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
    EXPECT_THAT(told, AllOf(HasSubstr("intercepted one report of KELVO"), Not(HasSubstr("the-project")),
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

TEST_F(Rehearsal, StartsNothingButTheHostAndTheLoader) {
  Words words = {"strace",          "-f",       "-qq", "-e", "trace=execve", "-o", place / "temporary/trace",
                 place.inspector(), "rehearse", "--"};
  for (const std::string& word : host()) {
    words.push_back(word);
  }
  EXPECT_THAT(place.runProgram(words).out, StartsWith("true"));
  std::istringstream trace(readFile(place / "temporary/trace"));
  std::vector<std::string> started;
  for (std::string line; std::getline(trace, line);) {
    if (line.find("execve(") != std::string::npos &&
        line.find("/ld-linux-x86-64.so.2\"") == std::string::npos) {
      started.push_back(line);
    }
  }
  EXPECT_THAT(started, testing::ElementsAre(HasSubstr("/vestra-inspect\""), HasSubstr(host().front())));
}

TEST_F(Rehearsal, LeavesTheHostItsStatusAndItsWords) {
  EXPECT_EQ(rehearse({"sh", "-c", "exit 7"}).status, 7);
  EXPECT_EQ(rehearse({"sh", "-c", "kill -9 $$"}).status, 137);
  EXPECT_EQ(rehearse({"echo", "--json", "--", "-x"}).out, "--json -- -x\n");
  EXPECT_EQ(rehearse({place / "nothing"}).status, 127);
  EXPECT_EQ(rehearse({place.project()}).status, 126);
  EXPECT_EQ(rehearse({}).status, 125);
}

TEST_F(Rehearsal, GivesTheHostTheHomeThatIsNamed) {
  const Outcome rehearsed = rehearse(host(), {"--home", place.elsewhere()});
  EXPECT_THAT(rehearsed.out, HasSubstr("home " + place.elsewhere()));
  EXPECT_EQ(rehearsed.status, 0);
}

/// How a host comes to its report: words of a shell, which gets a host as "$0" and the place's
/// directory as "$1".
struct Start {
  std::string name;
  std::string script;
  /// Where the support library is, as LD_LIBRARY_PATH.
  bool findsByPath = true;
};

std::ostream& operator<<(std::ostream& out, const Start& start) { return out << start.name; }

class EachRehearsedStart : public Rehearsal, public testing::WithParamInterface<Start> {};

TEST_P(EachRehearsedStart, IsIntercepted) {
  run({"cp", place.programs() + "/bin/libvestra.so.1", place.programs() + "/bin/statistics.so"});
  const std::string before = place.snapshot();
  if (!GetParam().findsByPath) {
    place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  }
  const Outcome rehearsed = rehearse({"sh", "-c", GetParam().script, place.programs() + "/bin", place / ""});
  EXPECT_EQ(rehearsed.status, 0) << rehearsed.err;
  EXPECT_THAT(rehearsed.err, AllOf(HasSubstr("intercepted one report of KELVO"),
                                   HasSubstr("would have been handed over now")));
  EXPECT_THAT(kept("command"), HasSubstr(" -mode batch -source "));
  EXPECT_THAT(kept("kelvo_vestra.tcl"), HasSubstr("-key runs -value \"2\""));
  EXPECT_FALSE(exists(started()));
  EXPECT_EQ(place.snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Rehearsal, EachRehearsedStart,
    testing::Values(
        Start{"ByScript", R"("$0/items_host" "$1/project" KELVO runs 2)"},
        Start{"WithoutPreload", R"(unset LD_PRELOAD; exec "$0/items_host" "$1/project" KELVO runs 2)"},
        Start{
            "WithAnotherPreload",
            R"(LD_PRELOAD=$1/support/libqvzcommonvestrasupport.so "$0/items_host" "$1/project" KELVO runs 2)"},
        Start{"WithPathInFront",
              R"(LD_LIBRARY_PATH=$1/support:$LD_LIBRARY_PATH "$0/items_host" "$1/project" KELVO runs 2)",
              false},
        Start{
            "WithEnvironmentOfItsOwn",
            R"(env -i $(env | grep ASAN_OPTIONS) LD_LIBRARY_PATH=$1/support "$0/items_host" "$1/project" KELVO runs 2)"},
        Start{"WithRpath", R"("$0/rpath_host" "$1/project" KELVO runs 2)", false},
        Start{"Opening", R"("$0/opening_host" "$0/statistics.so" "$1/project")"},
        Start{"OpeningDeeply", R"("$0/opening_host" "$0/statistics.so" "$1/project" deep)"},
        Start{"ClearingTheEnvironment", R"("$0/unusual_host" cleared "$1/project")"},
        Start{"InASessionOfItsOwn", R"("$0/unusual_host" daemon "$1/project")"}),
    [](const auto& test) { return test.param.name; });

TEST_F(Rehearsal, OfAHostThatGivesUpRootIsIntercepted) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "requires root";
  }
  chmod((place / "temporary").c_str(), 01777);
  const Outcome rehearsed = run({place.inspector(), "rehearse", "--", place.programs() + "/bin/unusual_host",
                                 "dropped", place.project()},
                                place.environment(), place.project());
  EXPECT_EQ(rehearsed.status, 0);
  EXPECT_EQ(rehearsed.out, "true\n");
  EXPECT_THAT(rehearsed.err, HasSubstr("intercepted one report of KELVO"));
  EXPECT_FALSE(exists(started()));
}

TEST_F(Rehearsal, IsRefusedWhereAHostWithoutRootCouldNotWrite) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "requires root";
  }
  run({"chown", "0:0", place / "temporary"});
  chmod((place / "temporary").c_str(), 0700);
  const Outcome rehearsed = run({place.inspector(), "rehearse", "--", "true"}, place.environment());
  EXPECT_EQ(rehearsed.status, 125);
  EXPECT_THAT(rehearsed.err, HasSubstr("a program that gives up root cannot reach"));
}

TEST_F(Rehearsal, NamesAReportThatAnotherSystemFunctionGot) {
  const Outcome rehearsed = rehearse({place.programs() + "/bin/own_system_host", "plain", place.project()});
  EXPECT_EQ(rehearsed.status, 124);
  EXPECT_THAT(rehearsed.err, AllOf(HasSubstr("LEAKED"), HasSubstr(place.inVestra("kelvo_vestra.tcl"))));
  EXPECT_FALSE(exists(started()));
  forgetRehearsals();
  const Json document = Json::parse(
      rehearse({place.programs() + "/bin/own_system_host", "plain", place.project()}, {"--json"}).out);
  EXPECT_EQ(document["leaked"], Json::array({place.inVestra("kelvo_vestra.tcl")}));
}

TEST_F(Rehearsal, SaysThatNothingWasIntercepted) {
  const Outcome rehearsed = rehearse({"true"});
  EXPECT_EQ(rehearsed.status, 0);
  EXPECT_THAT(rehearsed.err, HasSubstr("no call of send was intercepted"));
  EXPECT_THAT(rehearsed.err, HasSubstr("would have reported"));
  EXPECT_EQ(namesIn(place / "temporary").size(), 0U);
}

TEST_F(Rehearsal, SaysWhichProcessStillRuns) {
  place.setVariable("VESTRA_REHEARSAL_LIMIT", "100");
  const Outcome rehearsed = rehearse({"sh", "-c", "setsid sleep 600 & echo $!"});
  EXPECT_THAT(rehearsed.err, HasSubstr("(sleep 600) still runs"));
  run({"kill", rehearsed.out.substr(0, rehearsed.out.find('\n'))});
}

TEST_F(Rehearsal, SaysWhichProgramItCouldNotObserve) {
  const std::string program = staticProgram();
  const Outcome rehearsed = rehearse({"sh", "-c", program + "; true"});
  EXPECT_THAT(rehearsed.err, HasSubstr("not observed: " + program + " is static"));
}

TEST_F(Rehearsal, KeepsItsFilesInARelativeDirectory) {
  place.setVariable("TMPDIR", "../temporary");
  EXPECT_EQ(rehearse(host()).status, 0);
  EXPECT_THAT(kept("kelvo_vestra.tcl"), HasSubstr("runs"));
}

TEST_F(Rehearsal, RefusesADirectoryThatOthersMayChange) {
  chmod((place / "temporary").c_str(), 0777);
  const Outcome rehearsed = rehearse(host());
  EXPECT_EQ(rehearsed.status, 125);
  EXPECT_THAT(rehearsed.err, HasSubstr("others can replace what is in it"));
  EXPECT_EQ(rehearsed.out, "");
}

TEST_F(Rehearsal, DoesNotWaitForAPipeInItsFolder) {
  const Outcome rehearsed =
      rehearse({"sh", "-c", "mkdir $VESTRA_REHEARSAL_RECORD/1; mkfifo $VESTRA_REHEARSAL_RECORD/1/answer"});
  EXPECT_EQ(rehearsed.status, 124);
}

/// What is wrong in the project or home.
struct CorruptFile {
  std::string name;
  std::function<void(Place&)> make;
};

std::ostream& operator<<(std::ostream& out, const CorruptFile& state) { return out << state.name; }

class EachCorruptFile : public Rehearsal, public testing::WithParamInterface<CorruptFile> {};

TEST_P(EachCorruptFile, HasTheResultOfTheRealRun) {
  GetParam().make(place);
  place.giveToUser();
  expectToBeTheRealRun(host(), "kelvo_vestra.tcl");
}

INSTANTIATE_TEST_SUITE_P(
    Rehearsal, EachCorruptFile,
    testing::Values(
        CorruptFile{"SettingsReadOnlyWithoutIdentifier",
                    [](Place& place) {
                      place.write(place.settings(), "a=b\n");
                      chmod(place.settings().c_str(), 0400);
                    }},
        CorruptFile{"SettingsDirectory",
                    [](Place& place) {
                      run({"rm", place.settings()});
                      makeDirectory(place.settings());
                    }},
        CorruptFile{"SettingsLinkToNowhere",
                    [](Place& place) {
                      run({"rm", place.settings()});
                      makeLink(place.settings(), "/proc/nowhere/settings");
                    }},
        CorruptFile{"IdentityLinkToItself",
                    [](Place& place) {
                      run({"rm", place.identity()});
                      makeLink(place.identity(), place.identity());
                    }},
        CorruptFile{"IdentityLinkToNowhere",
                    [](Place& place) {
                      run({"rm", place.identity()});
                      makeLink(place.identity(), "/proc/nowhere/identity");
                    }},
        CorruptFile{"IdentityDevice",
                    [](Place& place) {
                      run({"rm", place.identity()});
                      makeLink(place.identity(), "/dev/null");
                    }},
        CorruptFile{"IdentityPipe",
                    [](Place& place) {
                      run({"rm", place.identity()});
                      makeNamedPipe(place.identity());
                    }},
        CorruptFile{"IdentityReadOnly", [](Place& place) { chmod(place.identity().c_str(), 0400); }},
        CorruptFile{"IdentityUnreadable", [](Place& place) { chmod(place.identity().c_str(), 0200); }},
        CorruptFile{"VestraDirectoryReadOnly", [](Place& place) { chmod(place.inVestra("").c_str(), 0500); }},
        CorruptFile{"VestraFile",
                    [](Place& place) {
                      run({"rm", "-r", place.inVestra("")});
                      place.write(place.project() + "/vestra", "");
                    }}),
    [](const auto& test) { return test.param.name; });

/// Hosts that cannot be rehearsed are not started.
class Unrehearsable : public Rehearsal {
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

TEST_F(Unrehearsable, HostsWithOtherRightsAreRefused) { expectRefused("/bin/su", "set-user-ID"); }

TEST_F(Unrehearsable, StaticHostsAreRefused) { expectRefused(staticProgram(), "static"); }

}  // namespace
}  // namespace vestra_test
