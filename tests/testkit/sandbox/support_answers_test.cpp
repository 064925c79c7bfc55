// A support library and a design tool that are missing, slow or failing.

#include <dlfcn.h>

#include <functional>
#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

namespace {

using namespace std::chrono_literals;

using testing::HasSubstr;
using testing::ResultOf;
using namespace vestra::testkit;

HostRun runWith(const SupportAnswers& answers) {
  Sandbox sandbox;
  sandbox.setSupportAnswers(answers);
  return sandbox.run(Oza::Vestra::KELVO, [] {});
}

SupportAnswers missing(const std::string& what) {
  SupportAnswers answers;
  answers.missing = {what};
  return answers;
}

TEST(SupportAnswers, DecideWhatBecomesOfAReport) {
  const auto notSent = [](const std::string& reason) {
    return testing::AllOf(testing::Not(WasSent()), ResultOf(whyNotSent, HasSubstr(reason)));
  };
  SupportAnswers failing;
  failing.toolStatus = 3;
  SupportAnswers slow;
  slow.toolDelay = 1ms;
  const std::vector<std::pair<SupportAnswers, testing::Matcher<const HostRun&>>> cases{
      {missing("library"), notSent("which found no support library, libqvzcommonvestrasupport.so")},
      {missing("regid"), Threw<std::logic_error>(HasSubstr("oza_vestra_regid"))},
      {missing("environment"), Threw<std::logic_error>(HasSubstr("oza_vestra_enviroment_data"))},
      {missing("exec_path"), Threw<std::logic_error>(HasSubstr("oza_vestra_exec_path"))},
      {missing("tool"), notSent("whose design tool ended with status 127 and made no report: ")},
      {failing, notSent("whose design tool ended with status 3 and made no report")},
      {slow, WasSent()},
  };
  for (const auto& [answers, matcher] : cases) {
    EXPECT_THAT(runWith(answers), matcher);
  }
}

TEST(SupportAnswers, CannotMissWhatIsUnknown) {
  try {
    runWith(missing("registration"));
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(),
                HasSubstr("missing holds \"registration\", which is none of library, exec_path"));
  }
}

TEST(SupportAnswers, MayMissALibraryThatIsLoaded) {
  void* const loaded = dlopen(supportLibraryPath().c_str(), RTLD_LAZY);
  const HostRun run = runWith(missing("library"));
  EXPECT_EQ(run.answer, false);
  EXPECT_THAT(run.supportCalls, testing::IsEmpty());
  dlclose(loaded);
}

}  // namespace
