// A program that names Vestra before its test kit.

#include <stdexcept>

#include <gmock/gmock.h>
#include <vestra/testkit/sandbox.h>

namespace {

TEST(AProgramThatFindsVestraFirst, IsToldToLinkTheTestKitFirst) {
  try {
    const vestra::testkit::Sandbox sandbox;
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("link vestra::testkit before vestra::vestra"));
  }
}

}  // namespace
