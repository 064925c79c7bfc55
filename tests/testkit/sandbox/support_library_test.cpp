// The stand-in support library, opened as the library opens the real one.

#include <dlfcn.h>

#include <algorithm>
#include <memory>

#include <gmock/gmock.h>
#include <vestra/testkit/sandbox.h>

#include "support/files.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace {

using testing::EndsWith;
using testing::MatchesRegex;
using vestra_test::readFile;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;

class SupportLibrary : public testing::Test {
 protected:
  SupportLibrary() : handle(dlopen(vestra::testkit::supportLibraryPath().c_str(), RTLD_LAZY)) {}
  ~SupportLibrary() override { dlclose(handle); }

  const char* execPath() const { return entry<const char* (*)()>("oza_vestra_exec_path")(); }
  const char* registrationId(const char* purpose) const {
    return entry<const char* (*)(const char*)>("oza_vestra_regid")(purpose);
  }
  const char* environment(const char* product) const {
    return entry<const char* (*)(const char*)>("oza_vestra_enviroment_data")(product);
  }

 private:
  template <typename Function>
  Function entry(const char* name) const {
    return reinterpret_cast<Function>(dlsym(handle, name));
  }

  void* handle;
};

TEST_F(SupportLibrary, HasTheRealFileName) {
  EXPECT_THAT(vestra::testkit::supportLibraryPath(),
              EndsWith("/vestra/testkit/libqvzcommonvestrasupport.so"));
}

TEST_F(SupportLibrary, AnswersByItselfWithTheToolBesideItAndThisMachine) {
  EXPECT_THAT(execPath(), EndsWith("bin/vestra-design-tool"));
  EXPECT_STREQ(registrationId("Implementation"), "stand-in-registration");
  const std::string text = environment("KELVO");
  EXPECT_THAT(text, MatchesRegex("os_name#Linux#os_release#.*#system_ram#1 GB#date_generated#.*"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '#') % 2, 1);
}

TEST_F(SupportLibrary, AnswersWhatTheEnvironmentSays) {
  const ScopedEnv tool("VESTRA_TESTKIT_EXEC_PATH", "/my tool");
  const ScopedEnv registration("VESTRA_TESTKIT_REGID", "R=1");
  const ScopedEnv pairs("VESTRA_TESTKIT_ENVIRONMENT", "a#1");
  EXPECT_STREQ(execPath(), "/my tool");
  EXPECT_STREQ(registrationId("Implementation"), "R=1");
  EXPECT_STREQ(environment(nullptr), "a#1");
}

TEST_F(SupportLibrary, AnswersNullWhereItIsTold) {
  const ScopedEnv variable("VESTRA_TESTKIT_NULL", "regid,environment");
  EXPECT_EQ(registrationId("Implementation"), nullptr);
  EXPECT_EQ(environment("KELVO"), nullptr);
  EXPECT_NE(execPath(), nullptr);
}

TEST_F(SupportLibrary, RecordsEachCallWithItsArgument) {
  const TemporaryDirectory directory;
  const ScopedEnv calls("VESTRA_TESTKIT_CALLS", directory / "calls");
  execPath();
  registrationId("Implementation");
  environment("KELVO");
  environment(nullptr);
  EXPECT_EQ(readFile(directory / "calls"),
            "oza_vestra_exec_path()\n"
            "oza_vestra_regid(\"Implementation\")\n"
            "oza_vestra_enviroment_data(\"KELVO\")\n"
            "oza_vestra_enviroment_data(null)\n");
}

}  // namespace
