// A program that uses the test kit as it should not: it includes no more of it than the sandbox, so
// that no assertions come out of the host's process, and it tells the time itself.

#include <ctime>
#include <iostream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <vestra/testkit/sandbox.h>

namespace {

using testing::HasSubstr;

TEST(AnAssertionThatCannotReachTheTest, MakesTheRunThrow) {
  vestra::testkit::Sandbox sandbox;
  try {
    sandbox.run(Oza::Vestra::KELVO, [] { EXPECT_EQ(1 + 1, 3); });
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr(std::string(__FILE__) + ":" + std::to_string(__LINE__ - 3)));
    EXPECT_THAT(error.what(), HasSubstr("1 + 1"));
    EXPECT_THAT(error.what(), HasSubstr("include <vestra/testkit/matchers.h>"));
  }
}

TEST(AnAssertionThatCannotReachTheTest, MayBeAnotherFrameworks) {
  for (const char* words : {"a.cpp:3: FAILED:", "a.cpp:3: ERROR: CHECK( x ) is NOT correct!",
                            "a.cpp(3): error: in \"s/t\": check x has failed"}) {
    vestra::testkit::Sandbox sandbox;
    EXPECT_THROW(sandbox.run(Oza::Vestra::KELVO, [&] { std::cout << words << std::endl; }),
                 std::runtime_error);
  }
}

TEST(AClockThatAnotherObjectTells, CannotBeHeld) {
  vestra::testkit::Sandbox sandbox;
  sandbox.setNow(1600000000);
  try {
    sandbox.run(Oza::Vestra::KELVO, [] {});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("setNow has no effect"));
    EXPECT_THAT(error.what(), HasSubstr("misuse_tests"));
  }
}

}  // namespace

/// Interposes the test kit's, as a preloaded object would. The C library's names of parameters
/// are reserved.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* out) noexcept {
  return out != nullptr ? *out = 42 : 42;
}
