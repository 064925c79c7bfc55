// What can be compared byte for byte, once the clock and the identifiers are held.

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>

#include "support/files.h"

namespace {

using Oza::Vestra;
using testing::HasSubstr;
using testing::Not;
using vestra::testkit::HasItem;
using vestra::testkit::HostRun;
using vestra::testkit::Report;
using vestra::testkit::Sandbox;
using vestra::testkit::SupportAnswers;
using vestra::testkit::WasSent;

constexpr std::time_t NOW = 1600000000;

const std::string GOLDEN_SCRIPT =
    R"(vestra_init -vestra_dir SANDBOX/project/vestra/
vestra_register_client -client project
vestra_add_data -client project -key date_generated -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key product_version -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key build_version -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key os_platform -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key registration_id -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key tool_flow -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key beta -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key route_design -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_family -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_device -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_package -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_speed -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key random_id -value "installation" -context "software_version_and_target_device"
vestra_add_data -client project -key project_id -value "project" -context "software_version_and_target_device"
vestra_add_data -client project -key project_iteration -value "1" -context "software_version_and_target_device"
vestra_add_data -client project -key a -value "1" -context "user_environment"
vestra_add_data -client project -key b -value "2" -context "user_environment"
vestra_add_data -client project -key c -value "3" -context "user_environment"
vestra_add_data -client project -key d -value "4" -context "user_environment"
vestra_add_data -client project -key e -value "5" -context "user_environment"
vestra_add_data -client project -key f -value "6" -context "user_environment"
vestra_register_client -client kelvo
vestra_add_data -client kelvo -key runs -value "2" -context "kelvo\\usage"
)";

/// A sandbox in which nothing is left to chance.
class HeldSandbox : public Sandbox {
 public:
  explicit HeldSandbox(std::time_t now = NOW) {
    SupportAnswers answers;
    answers.environment = "a#1#b#2#c#3#d#4#e#5#f#6";
    answers.registrationId = "REG";
    setSupportAnswers(answers);
    setIdentifiers("installation", "project");
    setNow(now);
  }

  HostRun runHost() {
    return run(Vestra::KELVO, [] { Vestra::add("runs", "2", Vestra::KELVO_USAGE); });
  }
};

TEST(AGoldenScript, IsTheSameInEachRun) {
  HeldSandbox sandbox;
  const HostRun run = sandbox.runHost();
  EXPECT_THAT(run, WasSent());
  const std::string script = sandbox.withoutDirectory(run.script);
  EXPECT_EQ(script.substr(0, script.find("vestra_transmit")), GOLDEN_SCRIPT);
  HeldSandbox other;
  EXPECT_EQ(other.withoutDirectory(other.runHost().script), script);
}

TEST(AGoldenPage, IsTheSameInEachRun) {
  HeldSandbox sandbox;
  HeldSandbox other;
  const HostRun run = sandbox.runHost();
  const HostRun otherRun = other.runHost();
  ASSERT_THAT(run, WasSent());
  const Report report = *run.report();
  EXPECT_THAT(report.html(), HasSubstr("<html"));
  EXPECT_THAT(report.xml(), HasSubstr("<?xml"));
  EXPECT_EQ(sandbox.withoutDirectory(report.html()), other.withoutDirectory(otherRun.report()->html()));
  EXPECT_EQ(sandbox.withoutDirectory(report.xml()), other.withoutDirectory(otherRun.report()->xml()));
  EXPECT_EQ(report.html(),
            vestra_test::readFile(sandbox.project() + "/vestra/usage_statistics_ext_kelvo.html"));
}

TEST(AHeldClock, DecidesTheReportsHourAndDay) {
  HeldSandbox sandbox;
  HeldSandbox anHourLater(NOW + 3600);
  const HostRun run = sandbox.runHost();
  EXPECT_EQ(run.identity->lastSendTimeDefault, NOW);
  EXPECT_NE(run.report()->clientId, anHourLater.runHost().report()->clientId);
  sandbox.setNow(NOW + 86400);
  EXPECT_THAT(sandbox.runHost(), Not(WasSent()));
  sandbox.setNow(NOW + 86401);
  EXPECT_THAT(sandbox.runHost(), WasSent());
}

// Longer ago than the years in which the tool looks for a kept script's hour.
TEST(AHeldClock, IsTheDesignToolsToo) {
  HeldSandbox sandbox(1000000000);
  const HostRun run = sandbox.runHost();
  ASSERT_THAT(run, WasSent());
  EXPECT_THAT(run.report()->warnings, testing::IsEmpty());
}

TEST(AHeldClock, IsTheSameInEachTimeZone) {
  HeldSandbox sandbox;
  const HostRun run = sandbox.runHost();
  setenv("TZ", "XYZ-5:30", 1);
  HeldSandbox elsewhere;
  const HostRun other = elsewhere.runHost();
  unsetenv("TZ");
  EXPECT_EQ(run.report()->clientId, other.report()->clientId);
}

TEST(HeldIdentifiers, ReplaceThoseOfAKnownProject) {
  Sandbox sandbox;
  sandbox.run(Vestra::KELVO, [] {});
  sandbox.setIdentifiers("mine", "my_project");
  sandbox.ageUntilDue();
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", "mine"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", "my_project"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", 2));
}

}  // namespace
