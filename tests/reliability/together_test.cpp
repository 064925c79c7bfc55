// Many hosts of one user whose home has no identifier yet.

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include <sstream>

#include "reliability/sanitized.h"
#include "support/files.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::AnyOf;
using testing::MatchesRegex;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HostRun;

constexpr int COUNT = SANITIZED ? 20 : 50;

class Together : public testing::Test {
 protected:
  Together() {
    vestra::testkit::SupportAnswers answers;
    answers.execPath = ":";
    sandbox.setSupportAnswers(answers);
    writeFile(sandbox.settingsFile(), "colour=blue\n");
  }

  std::vector<HostRun> runAll() {
    const std::string project = sandbox.project();
    return sandbox.runTogether(COUNT, [=](int number) {
      return Vestra::send(project.c_str(), number % 2 == 0 ? Vestra::KELVO : Vestra::TAVLO);
    });
  }

  vestra::testkit::Sandbox sandbox;
};

TEST_F(Together, HostsTearNoLineOfTheSettings) {
  for (const HostRun& run : runAll()) {
    EXPECT_THAT(run, EndedQuietly()) << run;
    EXPECT_TRUE(run.answer.has_value()) << run;
  }
  std::istringstream lines(readFile(sandbox.settingsFile()));
  for (std::string line; std::getline(lines, line);) {
    EXPECT_THAT(line, AnyOf("colour=blue", MatchesRegex("RandomID=[0-9a-f-]{36}")));
  }
}

}  // namespace
}  // namespace vestra_test
