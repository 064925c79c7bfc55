// The sandbox's directory: when it goes, and when it stays.

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>
#include <boost/filesystem.hpp>

#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace {

namespace fs = boost::filesystem;

using Oza::Vestra;
using testing::HasSubstr;
using testing::IsEmpty;
using vestra::testkit::HostRun;
using vestra::testkit::Sandbox;
using vestra_test::asOrdinaryUser;
using vestra_test::exists;
using vestra_test::inChildProcess;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;

/// A temporary directory of this test's own, where all may write.
class SandboxDirectory : public testing::Test {
 protected:
  SandboxDirectory() { chmod((temporary / "").c_str(), 0777); }

  std::vector<std::string> entries() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(temporary / "")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  TemporaryDirectory temporary;
  ScopedEnv place{"TMPDIR", temporary / ""};
};

TEST_F(SandboxDirectory, GoesWithTheSandbox) {
  {
    Sandbox sandbox;
    sandbox.run(Vestra::KELVO, [] {});
    EXPECT_TRUE(exists(sandbox.directory()));
  }
  EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(SandboxDirectory, GoesEvenWhenTheTestMadeItReadOnly) {
  const std::string left = asOrdinaryUser([] {
    std::string directory;
    {
      Sandbox sandbox;
      directory = sandbox.directory();
      fs::create_directories(sandbox.project() + "/vestra/deep");
      for (const char* path : {"/vestra/deep", "/vestra", ""}) {
        chmod((sandbox.project() + path).c_str(), 0);
      }
    }
    return exists(directory) ? "it stays" : "it is gone";
  });
  EXPECT_EQ(left, "it is gone");
}

/// Leaves a sandbox as a kill does; gives its directory.
std::string killOwner(const std::string& prelude = "") {
  const TemporaryDirectory note;
  EXPECT_THROW(inChildProcess([&]() -> std::string {
                 Sandbox sandbox;
                 vestra_test::writeFile(note / "directory", sandbox.directory());
                 if (!prelude.empty()) {
                   chmod((sandbox.directory() + prelude).c_str(), 0);
                 }
                 raise(SIGKILL);
                 return "";
               }),
               std::runtime_error);
  return vestra_test::readFile(note / "directory");
}

TEST_F(SandboxDirectory, IsRemovedByTheNextSandboxAfterAKill) {
  const std::string stale = killOwner("/project");
  EXPECT_TRUE(exists(stale));
  // Each process looks once.
  inChildProcess([] {
    const Sandbox next;
    return next.directory();
  });
  EXPECT_FALSE(exists(stale));
}

TEST_F(SandboxDirectory, StaysWhileItsOwnerLives) {
  const Sandbox sandbox;
  inChildProcess([] {
    const Sandbox next;
    return next.directory();
  });
  EXPECT_TRUE(exists(sandbox.directory()));
}

TEST_F(SandboxDirectory, StaysWhenItIsToBeKept) {
  testing::internal::CaptureStderr();
  std::string directory;
  {
    const ScopedEnv keep("VESTRA_TESTKIT_KEEP", "1");
    const Sandbox sandbox;
    directory = sandbox.directory();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "vestra::testkit keeps " + directory + "\n");
  EXPECT_TRUE(exists(directory));
  inChildProcess([] {
    const Sandbox next;
    return next.directory();
  });
  EXPECT_TRUE(exists(directory)) << "the next sandbox has removed what was to be kept";
}

TEST_F(SandboxDirectory, StaysAfterAFailedExpectation) {
  const std::string printed = inChildProcess([] {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string directory;
    {
      const Sandbox sandbox;
      directory = sandbox.directory();
      EXPECT_TRUE(false) << "on purpose, in a process of its own";
    }
    return testing::internal::GetCapturedStderr() +
           (exists(directory) ? "and it is there" : "but it is gone");
  });
  EXPECT_THAT(printed, testing::MatchesRegex("vestra::testkit keeps .*\nand it is there"));
}

TEST_F(SandboxDirectory, StaysAfterTheLastTenFailures) {
  inChildProcess([] {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ADD_FAILURE() << "on purpose, in a process of its own";
    for (int i = 0; i < 12; ++i) {
      const Sandbox sandbox;
      vestra_test::writeFile(sandbox.project() + "/number", std::to_string(i));
    }
    return testing::internal::GetCapturedStderr();
  });
  std::vector<int> numbers;
  for (const std::string& name : entries()) {
    numbers.push_back(std::stoi(vestra_test::readFile(temporary / (name + "/project/number"))));
  }
  EXPECT_THAT(numbers, testing::UnorderedElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
}

TEST_F(SandboxDirectory, FailureNamesNoDirectoryThatIsGone) {
  HostRun run;
  std::string directory;
  {
    Sandbox sandbox;
    directory = sandbox.directory();
    run = sandbox.run(Vestra::KELVO, [] {});
    std::ostringstream there;
    there << run;
    EXPECT_THAT(there.str(), HasSubstr(directory));
  }
  std::ostringstream gone;
  gone << run;
  EXPECT_THAT(gone.str(), testing::Not(HasSubstr(directory)));
  EXPECT_THAT(gone.str(), HasSubstr("vestra_init -vestra_dir SANDBOX/project/vestra/"));
}

}  // namespace
