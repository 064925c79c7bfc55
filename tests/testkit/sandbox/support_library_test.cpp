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
using testing::StartsWith;
using vestra_test::readFile;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;
using vestra_test::writeFile;

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

  TemporaryDirectory directory;
  ScopedEnv answersFile{"VESTRA_TESTKIT_ANSWERS", directory / "answers"};

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
  EXPECT_THAT(
      text,
      MatchesRegex("os_name#Linux#os_release#[^#]+#cpu_name#[^#]+#cpu_speed#[^#]+#total_processors#[0-9]+"
                   "#system_ram#[0-9]+ GB#date_generated#[^#]+#product_version#2018.2#.*"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '#') % 2, 1);
  EXPECT_EQ(text.find_first_of("\"\\$[]{}"), std::string::npos);
}

TEST_F(SupportLibrary, AnswersWhatTheFileSays) {
  writeFile(directory / "answers", "exec_path=/my tool\nregid=R=1\nenvironment=a#1\n");
  EXPECT_STREQ(execPath(), "/my tool");
  EXPECT_STREQ(registrationId("Implementation"), "R=1");
  EXPECT_STREQ(environment(nullptr), "a#1");
}

TEST_F(SupportLibrary, AnswersWhatTheEnvironmentSaysFirst) {
  writeFile(directory / "answers", "regid=file\n");
  const ScopedEnv variable("VESTRA_TESTKIT_REGID", "variable");
  EXPECT_STREQ(registrationId("Implementation"), "variable");
}

TEST_F(SupportLibrary, AnswersNullWhereItIsTold) {
  const ScopedEnv variable("VESTRA_TESTKIT_NULL", "regid,environment");
  EXPECT_EQ(registrationId("Implementation"), nullptr);
  EXPECT_EQ(environment("KELVO"), nullptr);
  EXPECT_NE(execPath(), nullptr);
  writeFile(directory / "answers", "null=exec_path\n");
  EXPECT_NE(execPath(), nullptr);
  const ScopedEnv none("VESTRA_TESTKIT_NULL", std::nullopt);
  EXPECT_EQ(execPath(), nullptr);
}

TEST_F(SupportLibrary, RecordsEachCallWithItsArgument) {
  writeFile(directory / "answers", "calls=" + (directory / "calls") + "\n");
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
