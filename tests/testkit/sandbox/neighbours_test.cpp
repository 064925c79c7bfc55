// Neighbours that are missing, slow or failing.

#include <dlfcn.h>

#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

namespace {

using namespace std::chrono_literals;

using Oza::Vestra;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using vestra::testkit::HostRun;
using vestra::testkit::Sandbox;
using vestra::testkit::SupportAnswers;
using vestra::testkit::Threw;
using vestra::testkit::WasSent;

class Neighbours : public testing::Test {
 protected:
  HostRun runWith(const SupportAnswers& answers) {
    sandbox.setSupportAnswers(answers);
    return sandbox.run(Vestra::KELVO, [] { Vestra::add("runs", "2", Vestra::KELVO_USAGE); });
  }

  HostRun runMissing(const std::vector<std::string>& what) {
    SupportAnswers answers;
    answers.missing = what;
    return runWith(answers);
  }

  Sandbox sandbox;
};

TEST_F(Neighbours, WithoutASupportLibraryNothingIsSent) {
  const HostRun run = runMissing({"library"});
  EXPECT_THAT(run, Not(WasSent()));
  EXPECT_EQ(whyNotSent(run), "which found no support library, libqvzcommonvestrasupport.so");
  EXPECT_THAT(run.supportCalls, IsEmpty());
}

TEST_F(Neighbours, EachEntryPointMayBeMissing) {
  EXPECT_THAT(runMissing({"regid"}), Threw<std::logic_error>(HasSubstr("oza_vestra_regid")));
  EXPECT_THAT(runMissing({"environment"}), Threw<std::logic_error>(HasSubstr("oza_vestra_enviroment_data")));
  EXPECT_THAT(runMissing({"exec_path"}), Threw<std::logic_error>(HasSubstr("oza_vestra_exec_path")));
}

TEST_F(Neighbours, WithoutADesignToolThereIsNoReport) {
  const HostRun run = runMissing({"tool"});
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run, Not(WasSent()));
  EXPECT_THAT(whyNotSent(run), HasSubstr("ended with status 127"));
}

TEST_F(Neighbours, DesignToolMayFail) {
  SupportAnswers answers;
  answers.toolStatus = 3;
  const HostRun run = runWith(answers);
  EXPECT_EQ(run.answer, true);
  EXPECT_EQ(whyNotSent(run), "whose design tool ended with status 3 and made no report");
}

TEST_F(Neighbours, DesignToolMayBeTooSlow) {
  SupportAnswers answers;
  answers.toolDelay = 1h;
  sandbox.setTimeLimit(500ms);
  const HostRun run = runWith(answers);
  EXPECT_TRUE(run.timedOut);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_FALSE(run.toolRuns[0].status);
}

TEST_F(Neighbours, DesignToolThatIsSlowReportsInTheEnd) {
  SupportAnswers answers;
  answers.toolDelay = 1ms;
  EXPECT_THAT(runWith(answers), WasSent());
}

TEST_F(Neighbours, UnknownOnesCannotBeMissing) {
  try {
    runMissing({"registration"});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(),
                HasSubstr("missing holds \"registration\", which is none of library, exec_path"));
  }
}

TEST_F(Neighbours, SupportLibraryInReachMayBeMissing) {
  void* const inReach = dlopen(vestra::testkit::supportLibraryPath().c_str(), RTLD_LAZY);
  const HostRun run = runMissing({"library"});
  EXPECT_EQ(run.answer, false);
  EXPECT_THAT(run.supportCalls, IsEmpty());
  dlclose(inReach);
}

}  // namespace
