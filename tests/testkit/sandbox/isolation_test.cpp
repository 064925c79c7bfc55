// The real support library and design tool are out of reach, whatever leads to them.

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include "reliability/sanitized.h"
#include "support/files.h"

namespace {

using Oza::Vestra;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using namespace vestra::testkit;
namespace fs = boost::filesystem;

/// A host with an RPATH that leads to a "real" support library.
class Isolation : public testing::Test {
 protected:
  Isolation() {
    fs::create_directory(real);
    fs::copy_file(REAL_SUPPORT_LIBRARY, library);
    fs::copy_file(RPATH_PROGRAM_HOST, host);
  }

  ~Isolation() override { EXPECT_FALSE(fs::exists(library + ".started")); }

  HostRun shell(const std::string& script) {
    return sandbox.runProgram({"sh", "-c", script, host, "report", sandbox.project(), real});
  }

  Sandbox sandbox;
  const std::string host = sandbox.directory() + "/host";
  const std::string real = sandbox.directory() + "/real";
  const std::string library = real + "/libqvzcommonvestrasupport.so";
};

/// How a program is started: a shell's words, with the host and its arguments as "$0" "$1" "$2" and
/// the real library's directory as "$3".
struct Start {
  std::string name;
  std::string script;
};

/// GoogleTest would print its bytes, padding included.
std::ostream& operator<<(std::ostream& out, const Start& start) { return out << start.name; }

class EachStart : public Isolation, public testing::WithParamInterface<Start> {};

TEST_P(EachStart, ReachesTheStandIns) {
  const HostRun run = shell(GetParam().script);
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "runs", 2));
  EXPECT_THAT(run.unsoundness, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Isolation, EachStart,
    testing::Values(Start{"Rpath", R"(exec "$0" "$1" "$2")"},
                    Start{"LibraryPath", R"(LD_LIBRARY_PATH=$3:$LD_LIBRARY_PATH exec "$0" "$1" "$2")"},
                    Start{"OtherPreload",
                          R"(LD_PRELOAD=$3/libqvzcommonvestrasupport.so exec "$0" "$1" "$2")"},
                    Start{"NoPreload", R"(unset LD_PRELOAD; "$0" "$1" "$2")"},
                    Start{"ShellInShell", R"(unset LD_PRELOAD; sh -c "'$0' '$1' '$2'")"}),
    [](const auto& test) { return test.param.name; });

TEST_F(Isolation, HoldsForProgramsThatCodeStarts) {
  const HostRun run = sandbox.runProcess([&] {
    unsetenv("LD_PRELOAD");
    return std::system((host + " report " + sandbox.project()).c_str()) == 0;
  });
  EXPECT_THAT(run.unsoundness, IsEmpty());
  EXPECT_THAT(run.sends, SizeIs(1));
  EXPECT_THAT(run.reports, SizeIs(1));
}

TEST_F(Isolation, HoldsWhereTheSupportLibraryIsMissing) {
  SupportAnswers answers;
  answers.missing = {"library"};
  sandbox.setSupportAnswers(answers);
  const HostRun run = shell(R"(exec "$0" "$1" "$2")");
  EXPECT_THAT(run, Not(WasSent()));
  EXPECT_EQ(run.sends.at(0).answer, false);
  EXPECT_THAT(run.supportCalls, IsEmpty());
  EXPECT_THAT(run.toolRuns, IsEmpty());
}

/// Reports as a host does that opens a copy of the library itself.
bool reportThrough(const std::string& library, int flags, const std::string& project) {
  void* const handle = dlopen(library.c_str(), flags);
  using Add = void (*)(const char*, const char*, unsigned int);
  using Send = bool (*)(const char*, unsigned int);
  reinterpret_cast<Add>(dlsym(handle, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE"))("runs", "2",
                                                                                      Vestra::KELVO_USAGE);
  return reinterpret_cast<Send>(dlsym(handle, "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE"))(project.c_str(),
                                                                                            Vestra::KELVO);
}

TEST_F(Isolation, HoldsForHostsThatOpenACopyOfTheLibrary) {
  fs::copy_file(VESTRA_LIBRARY, sandbox.directory() + "/plugin.so");
  std::vector<int> flagsTried = {RTLD_NOW | RTLD_LOCAL};
  if (!vestra_test::SANITIZED) {  // whose runtime ends the process at RTLD_DEEPBIND
    flagsTried.push_back(RTLD_NOW | RTLD_DEEPBIND);
  }
  for (const int flags : flagsTried) {
    const HostRun run = sandbox.runProcess(
        [&] { return reportThrough(sandbox.directory() + "/plugin.so", flags, sandbox.project()); });
    EXPECT_THAT(run, WasSent());
    ASSERT_THAT(run.added, SizeIs(1));
    EXPECT_EQ(run.added[0].key, "runs");
    ASSERT_THAT(run.sends, SizeIs(1));
    EXPECT_EQ(run.sends[0].answer, true);
    sandbox.ageUntilDue();
  }
}

TEST_F(Isolation, IsNotClaimedForProgramsWithAnEnvironmentOfTheirOwn) {
  const HostRun run = shell(R"(exec env -i "$0" "$1" "$2")");
  EXPECT_THAT(run.unsoundness, ElementsAre(host + " was started with an environment of its own"));
}

TEST_F(Isolation, IsNotClaimedForClearedEnvironments) {
  const HostRun run = sandbox.runProcess([&] {
    clearenv();
    return std::system((host + " report " + sandbox.project()).c_str()) == 0;
  });
  EXPECT_THAT(run.unsoundness, ElementsAre("/bin/sh was started with an environment of its own"));
}

/// A program that runs with other rights than its caller.
std::string privilegedProgram(const std::string& host) {
  if (geteuid() != 0) {
    return "/bin/su";
  }
  EXPECT_EQ(chown(host.c_str(), 65534, 65534), 0);
  chmod(host.c_str(), 04755);
  return host;
}

TEST_F(Isolation, IsNotClaimedForSetUserIdPrograms) {
  const std::string program = privilegedProgram(host);
  EXPECT_THAT(sandbox.runProgram({program, "--version"}).unsoundness,
              ElementsAre(AllOf(StartsWith(program), HasSubstr("set-user-ID"))));
}

TEST_F(Isolation, IsNotClaimedForStaticPrograms) {
  std::string program = vestra_test::readFile(host);
  // The second program header is the one that names the loader.
  ASSERT_EQ(program[64 + 56], 3);
  program[64 + 56] = 0;
  vestra_test::writeFile(host, program);
  EXPECT_THAT(shell(R"(exec "$0")").unsoundness, ElementsAre(AllOf(StartsWith(host), HasSubstr("static"))));
}

TEST_F(Isolation, ProcessesThatOutliveTheRunAreEndedAndReported) {
  const HostRun run = sandbox.runProgram({"sh", "-c", "setsid sleep 600 & echo $!"});
  EXPECT_THAT(run.outlivingProcesses, ElementsAre("sleep 600"));
  EXPECT_NE(kill(std::atoi(run.output.c_str()), 0), 0);
  EXPECT_EQ(run.exitStatus, 0);
}

TEST_F(Isolation, ProcessesThatAreWaitedForAreNotReported) {
  EXPECT_THAT(sandbox.runProgram({"sh", "-c", "setsid true & wait"}).outlivingProcesses, IsEmpty());
}

}  // namespace
