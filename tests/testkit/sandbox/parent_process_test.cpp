// What a process must be like that owns a sandbox. Each is tried in a process of its own.

#include <functional>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <vestra/testkit/sandbox.h>

#include "support/child_process.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace {

using Oza::Vestra;
using testing::HasSubstr;
using vestra::testkit::Sandbox;
using vestra_test::inChildProcess;

std::string runEmptyHost() {
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] {});
  return "the run was made";
}

TEST(ATestsProcess, MakesRunsAsLongAsItIsFresh) {
  EXPECT_EQ(inChildProcess(runEmptyHost), "the run was made");
}

TEST(ATestsProcess, MustNotCallVestraItself) {
  const vestra_test::TemporaryDirectory home;
  const vestra_test::ScopedEnv homeVariable("HOME", home.path());
  for (const auto& call : std::vector<std::function<void()>>{
           [] { Vestra::add("runs", "1", Vestra::KELVO_USAGE); }, [] { Vestra::internal(); },
           [] { Vestra::getLogFileName(); }, [] { Vestra::send("/proc/self", Vestra::KELVO); }}) {
    EXPECT_THAT(inChildProcess([&] {
                  call();
                  return runEmptyHost();
                }),
                HasSubstr("Vestra was called in the process that owns the sandbox"));
  }
}

std::string runWithAThread() {
  Sandbox sandbox;
  std::string complaint;
  std::thread other([&] {
    try {
      sandbox.run(Vestra::KELVO, [] {});
    } catch (const std::runtime_error& error) {
      complaint = error.what();
    }
  });
  other.join();
  return complaint;
}

TEST(ATestsProcess, MustHaveNoOtherThreads) {
  const std::string complaint = inChildProcess(runWithAThread);
  EXPECT_THAT(complaint, HasSubstr("has 2 threads"));
  EXPECT_THAT(complaint, HasSubstr("or execute the host as a program of its own with runProgram"));
}

TEST(ATestsProcess, MayHaveThreadsWhenItRunsAProgram) {
  EXPECT_EQ(inChildProcess([] {
              Sandbox sandbox;
              std::string status;
              std::thread other(
                  [&] { status = std::to_string(sandbox.runProgram({"true"}).exitStatus.value_or(-1)); });
              other.join();
              return status;
            }),
            "0");
}

}  // namespace
