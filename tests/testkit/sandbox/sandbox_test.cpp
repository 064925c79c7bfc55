#include <vestra/testkit/sandbox.h>

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/scoped_env.h"

namespace {

using namespace std::chrono_literals;

using Oza::Vestra;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using namespace vestra::testkit;
using vestra_test::exists;
using vestra_test::readFile;
using vestra_test::writeFile;

// Of this process alone: what the host and the tool take is not for reading back.
double processorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Code that is compiled for the debugger, for a sanitizer or for coverage is slower.
#ifdef __OPTIMIZE__
constexpr double ALLOWANCE = 1;
#else
constexpr double ALLOWANCE = 10;
#endif

TEST(Sandbox, GivesBackAllThatARunLeft) {
  Sandbox sandbox;
  SupportAnswers answers;
  answers.registrationId = "REG";
  sandbox.setSupportAnswers(answers);
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    std::cout << "the host's own words" << std::endl;
    std::cerr << "and its complaint" << std::endl;
  });
  EXPECT_THAT(run, WasSent());
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_FALSE(run.exception);
  EXPECT_FALSE(run.signal);
  EXPECT_FALSE(run.timedOut);
  EXPECT_EQ(run.output, "the host's own words\n");
  EXPECT_EQ(run.errorOutput, "and its complaint\n");
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].commandLine, designToolPath() + " -mode batch -source " + sandbox.project() +
                                             "/vestra/kelvo_vestra.tcl -notrace ");
  EXPECT_EQ(run.toolRuns[0].status, 0);
  EXPECT_THAT(run.toolRuns[0].output, HasSubstr("vestra-design-tool: "));
  EXPECT_EQ(run.toolRuns[0].script, run.script);
  EXPECT_EQ(run.toolRuns[0].rulesFile, run.rulesFile);
  EXPECT_THAT(run.script, HasSubstr("vestra_terminate\n"));
  EXPECT_THAT(run.rulesFile, HasSubstr("client_name = \"kelvo\""));
  ASSERT_THAT(run.reports, SizeIs(1));
  EXPECT_EQ(run.report()->registrationId, "REG");
  EXPECT_EQ(readFile(run.report()->folder + "/kelvo_vestra.tcl"), run.script);
  EXPECT_EQ(readFile(run.report()->folder + "/usage_statistics_ext_kelvo.wdm"), run.rulesFile);
  EXPECT_THAT(run.report()->folder, testing::StartsWith(sandbox.outbox() + "/"));
  EXPECT_THAT(run.supportCalls, SizeIs(3));
  EXPECT_EQ(run.settings->text, readFile(sandbox.settingsFile()));
  EXPECT_EQ("RandomID=" + run.settings->randomId + "\n", run.settings->text);
  EXPECT_EQ(run.identity->text, readFile(sandbox.identityFile()));
  EXPECT_EQ(run.identity->iteration, 2U);
}

TEST(Sandbox, TakesWhatTheLabToolsToolWroteFromTheLog) {
  Sandbox sandbox;
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_THAT(run, WasSent());
  EXPECT_EQ(run.toolRuns.at(0).output, readFile(sandbox.project() + "/vestra/tavlo_vestra.log"));
}

TEST(Sandbox, GivesEachRunAFreshLibrary) {
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] { Vestra::add("first", "1", Vestra::KELVO_USAGE); });
  const HostRun second = sandbox.run(Vestra::KELVO, [] { Vestra::add("second", "2", Vestra::KELVO_USAGE); });
  EXPECT_THAT(second.values(Vestra::KELVO_USAGE, "first"), IsEmpty());
  EXPECT_THAT(second.values(Vestra::KELVO_USAGE, "second"), ElementsAre("2"));
}

TEST(Sandbox, EndsAHostWhoseTimeIsUp) {
  Sandbox sandbox;
  sandbox.setTimeLimit(200ms);
  const HostRun run = sandbox.run(Vestra::KELVO, [] { pause(); });
  EXPECT_TRUE(run.timedOut);
  EXPECT_EQ(run.signal, SIGKILL);
  EXPECT_FALSE(run.answer);
}

/// A run that ends while its tool sleeps, however long a busy machine takes to get there.
HostRun runThatEndsInTheTool(std::chrono::milliseconds limit) {
  Sandbox sandbox;
  sandbox.setTimeLimit(limit);
  SupportAnswers answers;
  answers.execPath = "sleep 600; true";
  sandbox.setSupportAnswers(answers);
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  return run.toolRuns.empty() && limit < 1min ? runThatEndsInTheTool(2 * limit) : run;
}

TEST(Sandbox, EndsTheToolWithTheHost) {
  const HostRun run = runThatEndsInTheTool(200ms);
  EXPECT_TRUE(run.timedOut);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_FALSE(run.toolRuns[0].status);
}

TEST(Sandbox, TellsHowAHostEnded) {
  Sandbox sandbox;
  const auto endOfHost = [&](const std::function<void()>& host) {
    return endOf(sandbox.run(Vestra::KELVO, host));
  };
  EXPECT_EQ(endOfHost([] { kill(getpid(), SIGTERM); }), "whose host was ended by signal 15 (Terminated)");
  EXPECT_EQ(endOfHost([] { std::exit(3); }), "whose host ended with status 3");
  EXPECT_EQ(endOfHost([] { throw std::out_of_range("too\nfar"); }),
            "whose host threw std::out_of_range \"too\\x0afar\"");
  EXPECT_EQ(endOfHost([] { throw 42; }), "whose host threw int \"\"");
}

TEST(Sandbox, ListsTheHostsOwnCommandsApart) {
  Sandbox sandbox;
  const HostRun run = sandbox.runProcess([&] {
    const bool answer = Vestra::send(sandbox.project().c_str(), Vestra::KELVO);
    EXPECT_EQ(std::system("echo done"), 0);
    EXPECT_EQ(std::system("tool -mode batch -source other.tcl -notrace >&2"), 127 << 8);
    return answer;
  });
  EXPECT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_THAT(run.script, HasSubstr("vestra_terminate\n"));
  ASSERT_THAT(run.hostCommands, SizeIs(2));
  EXPECT_EQ(run.hostCommands[0].commandLine, "echo done");
  EXPECT_EQ(run.hostCommands[0].status, 0);
  EXPECT_EQ(run.hostCommands[1].commandLine, "tool -mode batch -source other.tcl -notrace >&2");
  EXPECT_EQ(run.output, "done\n");
}

TEST(Sandbox, TellsWhatTheHostAskedOfTheLibrary) {
  Sandbox sandbox;
  const HostRun run = sandbox.runProcess([&] {
    Vestra::add("runs", "2", Vestra::KELVO_USAGE);
    Vestra::add("line\nfeed", "", Vestra::TAVLO_USAGE);
    Vestra::send("project", Vestra::KELVO_ALT);
    return Vestra::send(nullptr, Vestra::TAVLO);
  });
  EXPECT_THAT(run, Threw<std::logic_error>());
  ASSERT_THAT(run.added, SizeIs(2));
  EXPECT_EQ(run.added[1].section, Vestra::TAVLO_USAGE);
  EXPECT_EQ(run.added[1].key, "line\nfeed");
  ASSERT_THAT(run.sends, SizeIs(2));
  EXPECT_EQ(run.sends[0].projectDirectory, sandbox.project());
  EXPECT_EQ(run.sends[0].product, Vestra::KELVO_ALT);
  EXPECT_EQ(run.sends[0].answer, true);
  EXPECT_FALSE(run.sends[1].answer);
  EXPECT_EQ(run.sends[1].exception->type, "std::logic_error");
}

// Twice the items take at most about twice the time; the square of it would be 400 s.
TEST(Sandbox, ReadsAHundredThousandItemsBackInTwoSeconds) {
  constexpr int COUNT = 100000;
  Sandbox sandbox;
  SupportAnswers answers;
  answers.toolStatus = 0;
  sandbox.setSupportAnswers(answers);
  const double before = processorSeconds();
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    for (int i = 0; i < COUNT; ++i) {
      Vestra::add("k", "v", i % 2 == 0 ? Vestra::KELVO_USAGE : Vestra::TAVLO_USAGE);
    }
  });
  EXPECT_EQ(run.added.size(), std::size_t{COUNT});
  EXPECT_GE(run.writtenItems.size(), std::size_t{COUNT});
  EXPECT_LE(processorSeconds() - before, 2 * ALLOWANCE);
}

TEST(Sandbox, KeepsTheScriptOfAReportThatWasNotDue) {
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] {});
  const HostRun run = sandbox.run(Vestra::KELVO, [] { Vestra::add("again", "1", Vestra::KELVO_USAGE); });
  EXPECT_EQ(run.answer, false);
  EXPECT_THAT(run.toolRuns, IsEmpty());
  EXPECT_THAT(run.reports, IsEmpty());
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "again", "1"));
}

TEST(Sandbox, TakesNoEarlierRunsScriptForThisOnes) {
  Sandbox sandbox;
  const auto host = [] { Vestra::add("password", "1", Vestra::KELVO_USAGE); };
  sandbox.run(Vestra::KELVO, host);
  sandbox.run(Vestra::KELVO, host);
  ASSERT_TRUE(exists(sandbox.project() + "/vestra/kelvo_vestra.tcl"));
  const auto isUnknown = [](const HostRun& run) {
    const auto password = HasItem(Vestra::KELVO_USAGE, "password", testing::_);
    return run.script.empty() && run.writtenItems.empty() && !testing::Matches(password)(run) &&
           !testing::Matches(Not(password))(run) && !testing::Matches(HasNoHazards())(run);
  };
  const HostRun silent = sandbox.runProcess([] { return true; });
  EXPECT_TRUE(isUnknown(silent)) << silent;
  SupportAnswers answers;
  answers.missing = {"library"};
  sandbox.setSupportAnswers(answers);
  const HostRun unanswered = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_TRUE(isUnknown(unanswered)) << unanswered;
  EXPECT_EQ(whyNotSent(unanswered), "which found no support library, libqvzcommonvestrasupport.so");
  writeFile(sandbox.identityFile(), "words\n");
  const HostRun refused = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_TRUE(isUnknown(refused)) << refused;
  EXPECT_EQ(whyNotSent(refused), "which could not use the identity file " + sandbox.identityFile());
}

TEST(Sandbox, StartsWithoutTheVariablesOfTheOneWhoTests) {
  const vestra_test::ScopedEnv debug("CALVIX_VESTRA_DEBUG_EXT", "1");
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] {});
  EXPECT_FALSE(exists(sandbox.project() + "/vestra/kelvo_vestra.tcl"));
  sandbox.ageUntilDue();
  sandbox.setEnvironment("CALVIX_VESTRA_DEBUG_EXT", "1");
  sandbox.run(Vestra::KELVO, [] {});
  EXPECT_TRUE(exists(sandbox.project() + "/vestra/kelvo_vestra.tcl"));
}

TEST(Sandbox, RunsHostsTogether) {
  Sandbox sandbox;
  const std::vector<HostRun> runs = sandbox.runTogether(5, [](int number) {
    std::cout << number << std::endl;
    return number % 2 == 0;
  });
  ASSERT_THAT(runs, SizeIs(5));
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(runs[static_cast<std::size_t>(i)].output, std::to_string(i) + "\n");
    EXPECT_EQ(runs[static_cast<std::size_t>(i)].answer, i % 2 == 0);
  }
}

TEST(Sandbox, AgesOnlyTimesThatWereNoted) {
  Sandbox sandbox;
  sandbox.age(10s);
  EXPECT_FALSE(exists(sandbox.identityFile()));
  writeFile(sandbox.identityFile(), "1000\n0\n7\n0\nproject\n");
  sandbox.age(10s);
  EXPECT_EQ(readFile(sandbox.identityFile()), "990\n0\n7\n0\nproject\n");
  writeFile(sandbox.identityFile(), "words\n2000\n7\n");
  sandbox.age(10s);
  EXPECT_EQ(readFile(sandbox.identityFile()), "words\n1990\n7\n");
}

/// What the sandbox says when it cannot do its work.
std::string complaintOf(const std::function<void()>& action) {
  try {
    action();
    return "none";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(Sandbox, SaysWhichFileItCannotWrite) {
  Sandbox sandbox;
  const std::string inTheWay = sandbox.directory() + "/runs/run-1/started";
  boost::filesystem::create_directories(inTheWay);
  EXPECT_EQ(complaintOf([&] { sandbox.run(Vestra::KELVO, [] {}); }), "the sandbox cannot write " + inTheWay);
}

TEST(Sandbox, SaysThatAVariableCannotBeSet) {
  Sandbox sandbox;
  sandbox.setEnvironment("A=B", "c");
  EXPECT_EQ(complaintOf([&] { sandbox.run(Vestra::KELVO, [] {}); }),
            "the sandbox cannot run the host: no environment variable can be called \"A=B\"");
}

TEST(Sandbox, SaysThatAFolderOfTheOutboxHoldsNoReport) {
  Sandbox sandbox;
  const std::string folder = sandbox.outbox() + "/run-1/0001-kelvo";
  EXPECT_EQ(
      complaintOf([&] { sandbox.runProcess([&] { return boost::filesystem::create_directories(folder); }); }),
      "no report in " + folder);
}

TEST(Sandbox, SaysThatItHasNoDescriptorsLeft) {
  Sandbox sandbox;
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  // One is left, for the files; a pipe has two.
  const int next = dup(STDIN_FILENO);
  close(next);
  const rlimit one{static_cast<rlim_t>(next) + 1, before.rlim_max};
  EXPECT_EQ(complaintOf([&] {
              // The sanitizers need some to look into an exception and at a virtual call.
              const struct Restored {
                ~Restored() { setrlimit(RLIMIT_NOFILE, &limits); }
                const rlimit& limits;
              } restored{before};
              setrlimit(RLIMIT_NOFILE, &one);
              sandbox.run(Vestra::KELVO, [] {});
            }),
            "the sandbox cannot make a pipe");
}

TEST(Sandbox, ReadsTheRecordsOfFilesAsTheLibraryWould) {
  Sandbox sandbox;
  writeFile(sandbox.settingsFile(), "RandomID=a=b\n RandomID=mine\r\nRandomID=other\n");
  writeFile(sandbox.identityFile(), "5\n\n12x\n1");
  const HostRun run = sandbox.runProcess([] { return true; });
  EXPECT_EQ(run.settings->randomId, "mine");
  EXPECT_EQ(run.identity->lastSendTimeDefault, 5);
  EXPECT_FALSE(run.identity->lastSendTimeType1);
  EXPECT_EQ(run.identity->iteration, 12U);
  EXPECT_EQ(run.identity->orbeloFlow, true);
  EXPECT_FALSE(run.identity->projectId);
}

}  // namespace
