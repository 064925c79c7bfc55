// What a report consists of: the script, the rules, the command line and what the
// design tool makes of them.

#include <sched.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cstdlib>
#include <ctime>

#include "support/files.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

using Oza::Vestra;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using vestra::testkit::EndedQuietly;
using vestra::testkit::HasItem;
using vestra::testkit::HasNoHazards;
using vestra::testkit::HostRun;
using vestra::testkit::WasSent;

using Report = Scenario;

const char* const IDENTITY = "0\n0\n7\n0\nproject-7\n";
const char* const SETTINGS = "RandomID=0f0e0d0c-0b0a-4908-8706-050403020100\n";

// The context texts hold two backslashes, which the checksum reads as one.
const char* const PROJECT_SEGMENTS =
    "project"
    "date_generated2026-11-21projectsoftware_version_and_target_device"
    "product_versionnot_applicableprojectsoftware_version_and_target_device"
    "build_versionnot_applicableprojectsoftware_version_and_target_device"
    "os_platformnot_applicableprojectsoftware_version_and_target_device"
    "registration_idnot_applicableprojectsoftware_version_and_target_device"
    "tool_flownot_applicableprojectsoftware_version_and_target_device"
    "betaTRUEprojectsoftware_version_and_target_device"
    "route_designnot_applicableprojectsoftware_version_and_target_device"
    "target_familynot_applicableprojectsoftware_version_and_target_device"
    "target_devicenot_applicableprojectsoftware_version_and_target_device"
    "target_packagenot_applicableprojectsoftware_version_and_target_device"
    "target_speednot_applicableprojectsoftware_version_and_target_device"
    "random_id0f0e0d0c-0b0a-4908-8706-050403020100projectsoftware_version_and_target_device"
    "project_idproject-7projectsoftware_version_and_target_device"
    "project_iteration7projectsoftware_version_and_target_device"
    "os_nameLinuxprojectuser_environment"
    "os_release12projectuser_environment"
    "cpu_nameX1projectuser_environment"
    "cpu_speed3 GHzprojectuser_environment"
    "total_processors8projectuser_environment"
    "system_ram32 GBprojectuser_environment";

const char* const PROJECT_LINES =
    "vestra_register_client -client project\n"
    "vestra_add_data -client project -key date_generated -value \"2026-11-21\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key product_version -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key build_version -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key os_platform -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key registration_id -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key tool_flow -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key beta -value \"TRUE\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key route_design -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key target_family -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key target_device -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key target_package -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key target_speed -value \"not_applicable\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key random_id -value \"0f0e0d0c-0b0a-4908-8706-050403020100\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key project_id -value \"project-7\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key project_iteration -value \"7\" -context "
    "\"software_version_and_target_device\"\n"
    "vestra_add_data -client project -key os_name -value \"Linux\" -context \"user_environment\"\n"
    "vestra_add_data -client project -key os_release -value \"12\" -context \"user_environment\"\n"
    "vestra_add_data -client project -key cpu_name -value \"X1\" -context \"user_environment\"\n"
    "vestra_add_data -client project -key cpu_speed -value \"3 GHz\" -context \"user_environment\"\n"
    "vestra_add_data -client project -key total_processors -value \"8\" -context \"user_environment\"\n"
    "vestra_add_data -client project -key system_ram -value \"32 GB\" -context \"user_environment\"\n";

std::string timeStamp(std::time_t moment) {
  std::array<char, 16> text{};
  const std::tm* local = std::localtime(&moment);
  std::strftime(text.data(), text.size(), "%j%Y%H", local);
  return text.data();
}

/// The checksums that a report made between two moments may have.
testing::Matcher<std::string> isChecksumOf(const std::string& segments, std::time_t begin, std::time_t end) {
  const auto checksum = [&](std::time_t moment) {
    const std::string text = timeStamp(moment) + segments;
    return std::to_string(
        crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
  };
  return testing::AnyOf(checksum(begin), checksum(end));
}

/// The script with the checksum, which holds the hour, taken out of it.
std::string withoutChecksum(std::string script, std::string& checksum) {
  const std::string before = "vestra_transmit -clientid ";
  const std::size_t begin = script.find(before) + before.size();
  const std::size_t end = script.find(' ', begin);
  checksum = script.substr(begin, end - begin);
  return script.replace(begin, end - begin, "CHECKSUM");
}

TEST_F(Report, SimulatorWritesThisScript) {
  writeIdentity(IDENTITY);
  writeSettings(SETTINGS);
  const std::time_t begin = std::time(nullptr);
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("Beta", "TRUE", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    Vestra::add("unknown", "x", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    Vestra::add("mode", "batch", Vestra::KELVO_COMMAND_LINE_OPTIONS);
    Vestra::add("Runs", "2", Vestra::KELVO_USAGE);
    Vestra::add("Runs", "3", Vestra::KELVO_USAGE);
  });
  const std::time_t end = std::time(nullptr);
  std::string checksum;
  const std::string vestra = sandbox.project() + "/vestra/";
  EXPECT_EQ(withoutChecksum(run.script, checksum),
            "vestra_init -vestra_dir " + vestra + "\n" + PROJECT_LINES +
                "vestra_register_client -client kelvo\n"
                "vestra_add_data -client kelvo -key mode -value \"batch\" -context "
                "\"kelvo\\\\command_line_options\"\n"
                "vestra_add_data -client kelvo -key Runs -value \"2\" -context \"kelvo\\\\usage\"\n"
                "vestra_add_data -client kelvo -key Runs -value \"3\" -context \"kelvo\\\\usage\"\n"
                "vestra_transmit -clientid CHECKSUM -regid \"REG-1\" -xml " +
                vestra + "usage_statistics_ext_kelvo.xml -html " + vestra +
                "usage_statistics_ext_kelvo.html -wdm " + vestra +
                "usage_statistics_ext_kelvo.wdm -intro \"<H3>KELVO Usage Report</H3><BR>\"\n"
                "vestra_terminate\n");
  EXPECT_THAT(checksum,
              isChecksumOf(std::string(PROJECT_SEGMENTS) + "kelvo"
                                                           "modebatchkelvokelvo\\command_line_options"
                                                           "Runs2kelvokelvo\\usage"
                                                           "Runs3kelvokelvo\\usage",
                           begin, end));
}

TEST_F(Report, LabToolWritesThisScript) {
  writeIdentity(IDENTITY);
  writeSettings(SETTINGS);
  const std::time_t begin = std::time(nullptr);
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {
    Vestra::add("beta", "TRUE", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    Vestra::add("probes", "4", Vestra::TAVLO_USAGE);
  });
  const std::time_t end = std::time(nullptr);
  std::string checksum;
  const std::string vestra = sandbox.project() + "/vestra/";
  // Contexts 2 and 3 are empty and skipped together; 4 is visited with 5.
  EXPECT_EQ(withoutChecksum(run.script, checksum),
            "vestra_init -vestra_dir " + vestra + "\n" + PROJECT_LINES +
                "vestra_register_client -client tavlo\n"
                "vestra_add_data -client tavlo -key probes -value \"4\" -context \"tavlo\\\\usage\"\n"
                "vestra_transmit -clientid CHECKSUM -regid \"REG-1\" -xml " +
                vestra + "usage_statistics_ext_tavlo.xml -html " + vestra +
                "usage_statistics_ext_tavlo.html -wdm " + vestra +
                "usage_statistics_ext_tavlo.wdm -intro \"<H3>TAVLO Usage Report</H3><BR>\"\n"
                "vestra_terminate\n");
  EXPECT_THAT(checksum,
              isChecksumOf(std::string(PROJECT_SEGMENTS) + "tavlo" + "probes4tavlotavlo\\usage", begin, end));
}

TEST_F(Report, DesignToolReadsWhatWasAdded) {
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("Target_Device", "x7", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    Vestra::add("mode", "batch {with} braces; and #", Vestra::KELVO_COMMAND_LINE_OPTIONS);
    Vestra::add("path", "/a b/\xC3\xA4", Vestra::KELVO_USAGE);
  });
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run, HasNoHazards());
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "target_device", "x7"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", "1"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "random_id", run.settings->randomId));
  EXPECT_THAT(run,
              HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", *run.identity->projectId));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "beta", "not_applicable"));
  EXPECT_THAT(run, HasItem(Vestra::USER_ENVIRONMENT, "system_ram", "32 GB"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_COMMAND_LINE_OPTIONS, "mode", "batch {with} braces; and #"));
  EXPECT_THAT(run, HasItem(Vestra::KELVO_USAGE, "path", "/a b/\xC3\xA4"));
  ASSERT_THAT(run.reports, SizeIs(1));
  EXPECT_EQ(run.report()->items, run.writtenItems);
  EXPECT_EQ(run.report()->registrationId, "REG-1");
  EXPECT_EQ(run.report()->intro, "<H3>KELVO Usage Report</H3><BR>");
  EXPECT_THAT(run.report()->clients, ElementsAre("project", "kelvo"));
  EXPECT_THAT(run.report()->warnings, IsEmpty());
}

TEST_F(Report, RulesMapTheProjectAndTheProduct) {
  for (const auto& [product, name] : {std::pair{Vestra::KELVO, "kelvo"}, {Vestra::TAVLO, "tavlo"}}) {
    const HostRun run = sandbox.run(product, [] {});
    sandbox.ageUntilDue();
    ASSERT_THAT(run, WasSent());
    const auto& rules = run.report()->rules;
    ASSERT_THAT(rules, SizeIs(4));
    EXPECT_EQ(rules[0].client, "project");
    EXPECT_EQ(rules[0].context, "software_version_and_target_device");
    EXPECT_EQ(rules[0].htmlFormat, "UserEnvStyle");
    EXPECT_EQ(rules[1].xmlMap, "user_environment");
    EXPECT_EQ(rules[2].client, name);
    EXPECT_EQ(rules[2].context, std::string(name) + "\\command_line_options");
    EXPECT_EQ(rules[3].htmlMap, std::string(name) + "\\usage");
    EXPECT_EQ(rules[3].htmlFormat, "FennoxStatsStyle");
  }
}

TEST_F(Report, SimulatorStartsTheToolWithScriptAndRulesOnDisk) {
  const RecordingTool& tool = useRecordingTool("echo tool output; echo tool error >&2");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  const std::string script = inVestraDirectory("kelvo_vestra.tcl");
  EXPECT_EQ(run.answer, true);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].commandLine, tool.command() + " -mode batch -source " + script + " -notrace ");
  EXPECT_EQ(run.toolRuns[0].status, 0);
  // The simulator's tool writes to the host's own output.
  EXPECT_EQ(run.toolRuns[0].output, "tool output\ntool error\n");
  EXPECT_THAT(run, EndedQuietly());
  ASSERT_THAT(tool.invocations(), SizeIs(1));
  const Invocation seen = tool.invocations()[0];
  EXPECT_THAT(seen.arguments, ElementsAre("-mode", "batch", "-source", script, "-notrace"));
  EXPECT_EQ(seen.workingDirectory, sandbox.directory());
  EXPECT_THAT(seen.files,
              ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(seen.script, run.script);
  EXPECT_EQ(seen.rules, run.rulesFile);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
}

TEST_F(Report, LabToolFindsTheToolsOutputInItsLog) {
  writeFile(inVestraDirectory("tavlo_vestra.log"), "an old log\n");
  const RecordingTool& tool = useRecordingTool("echo tool output; echo tool error >&2");
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  const std::string log = inVestraDirectory("tavlo_vestra.log");
  EXPECT_EQ(run.answer, true);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].commandLine, tool.command() + " -mode batch -source " +
                                             inVestraDirectory("tavlo_vestra.tcl") + " -notrace  > " + log +
                                             " 2>&1");
  EXPECT_EQ(readFile(log), "tool output\ntool error\n");
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info", "tavlo_vestra.log"));
}

TEST_F(Report, SimulatorLeavesTheLabToolsLogAlone) {
  writeFile(inVestraDirectory("tavlo_vestra.log"), "an old log\n");
  useRecordingTool();
  EXPECT_EQ(sandbox.run(Vestra::KELVO, [] {}).answer, true);
  EXPECT_EQ(readFile(inVestraDirectory("tavlo_vestra.log")), "an old log\n");
}

TEST_F(Report, SupportLibraryIsAskedByNameForTheSimulatorAndWithNullForTheLabTool) {
  useRecordingTool();
  EXPECT_THAT(sandbox.run(Vestra::KELVO, [] {}).supportCalls,
              ElementsAre("oza_vestra_enviroment_data(\"KELVO\")", "oza_vestra_regid(\"Implementation\")",
                          "oza_vestra_exec_path()"));
  sandbox.ageUntilDue();
  EXPECT_THAT(sandbox.run(Vestra::TAVLO, [] {}).supportCalls,
              ElementsAre("oza_vestra_enviroment_data(null)", "oza_vestra_regid(\"Implementation\")",
                          "oza_vestra_exec_path()"));
}

TEST_F(Report, ProductsAboveTwoAreTheLabTool) {
  useRecordingTool();
  for (const std::uint32_t product : {3U, 7U, 0xFFFFFFFFU}) {
    const HostRun run = sandbox.run(static_cast<Vestra::ProductType>(product), [] {});
    sandbox.ageUntilDue();
    ASSERT_THAT(run.toolRuns, SizeIs(1));
    EXPECT_THAT(run.toolRuns[0].commandLine,
                MatchesRegex(".*/tavlo_vestra.tcl -notrace  > .*/tavlo_vestra.log 2>&1"));
    EXPECT_THAT(run.rulesFile, testing::HasSubstr("client_name = \"tavlo\""));
  }
}

TEST_F(Report, SecondSimulatorSlotHasTheSimulatorsNames) {
  useRecordingTool();
  const HostRun run = sandbox.run(Vestra::KELVO_ALT, [] {});
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_THAT(run.toolRuns[0].commandLine, MatchesRegex(".*/kelvo_vestra.tcl -notrace "));
  EXPECT_THAT(run.script, testing::HasSubstr("-intro \"<H3>KELVO Usage Report</H3><BR>\"\n"));
}

TEST_F(Report, RelativeProjectLiesBelowTheHostsCurrentDirectory) {
  useRecordingTool();
  const HostRun run = sandbox.runProcess([] { return Vestra::send("project", Vestra::KELVO); });
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run.script, testing::StartsWith("vestra_init -vestra_dir " + sandbox.project() + "/vestra/\n"));
}

TEST_F(Report, ProjectWithAFinalSlashHasADoubledOneInItsPaths) {
  useRecordingTool();
  const std::string project = sandbox.project() + "/";
  const HostRun run = sandbox.runProcess([&] { return Vestra::send(project.c_str(), Vestra::KELVO); });
  EXPECT_EQ(run.answer, true);
  EXPECT_THAT(run.script,
              testing::StartsWith("vestra_init -vestra_dir " + sandbox.project() + "//vestra/\n"));
}

TEST_F(Report, HostsProjectIdentifierIsTakenInAnyLetterCase) {
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("PROJECT_ID", "host-project", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    Vestra::add("tool_flow", "first", Vestra::USER_ENVIRONMENT);
  });
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_id", "host-project"));
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "tool_flow", "kelvo_orbelo"));
  EXPECT_EQ(run.identity->projectId, "host-project");
  EXPECT_EQ(run.identity->orbeloFlow, true);
}

TEST_F(Report, ProjectWithAHostsIdentifierIsMarkedForTheLabToolToo) {
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {
    Vestra::add("project_id", "host-project", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  });
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "tool_flow", "kelvo_orbelo"));
}

TEST_F(Report, EnvironmentFactWithoutAValueIsLeftOut) {
  answers.environment = std::string(ENVIRONMENT) + "#beta";
  sandbox.setSupportAnswers(answers);
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "beta", "not_applicable"));
}

TEST_F(Report, EnvironmentTextMayBeTooShort) {
  for (const char* text : {"", "#", "a", "a#1", "a#1#b", "a#1#b#2#c#3#d#4#e#5#f"}) {
    answers.environment = text;
    sandbox.setSupportAnswers(answers);
    useRecordingTool();
    const HostRun run = sandbox.run(Vestra::KELVO, [] {});
    sandbox.ageUntilDue();
    EXPECT_EQ(run.answer, true) << text << run;
  }
}

TEST_F(Report, ScriptAndRulesStayUnderTheDebugVariable) {
  useRecordingTool();
  for (const char* value : {"0", "1", " "}) {
    sandbox.setEnvironment("CALVIX_VESTRA_DEBUG_EXT", value);
    EXPECT_EQ(sandbox.run(Vestra::KELVO, [] {}).answer, true);
    sandbox.ageUntilDue();
    EXPECT_THAT(filesInVestraDirectory(),
                ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
  }
  sandbox.setEnvironment("CALVIX_VESTRA_DEBUG_EXT", "");
  EXPECT_EQ(sandbox.run(Vestra::KELVO, [] {}).answer, true);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
}

TEST_F(Report, NumbersAreNotGroupedInAHostThatGroupsDigits) {
  struct Grouping : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
    char do_thousands_sep() const override { return '.'; }
  };
  writeIdentity("1000000\n2000000\n1234567\n0\nproject\n");
  useRecordingTool();
  const HostRun run = sandbox.run(
      Vestra::KELVO, [] { std::locale::global(std::locale(std::locale::classic(), new Grouping)); });
  EXPECT_THAT(run, HasItem(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE, "project_iteration", "1234567"));
  EXPECT_THAT(run.script, testing::ContainsRegex("vestra_transmit -clientid [0-9]+ -regid"));
  EXPECT_THAT(run.identity->text, MatchesRegex("[0-9]{10}\n2000000\n1234568\n0\nproject\n"));
  EXPECT_THAT(run.settings->text, MatchesRegex("RandomID=[0-9a-f-]{36}\n"));
}

TEST_F(Report, ReportFromTheMakersNetworkIsMarkedAsATest) {
  constexpr int NO_NAMESPACE = 77;
  const HostRun run = sandbox.runProcess([] {
    const std::string domain = "lab.CALVIX.example";
    if (unshare(CLONE_NEWUTS) != 0 || setdomainname(domain.data(), domain.size()) != 0) {
      std::exit(NO_NAMESPACE);
    }
    return Vestra::internal();
  });
  if (run.exitStatus == NO_NAMESPACE) {
    GTEST_SKIP() << "no namespace for the domain name can be made here";
  }
  EXPECT_EQ(run.answer, true) << run;
}

}  // namespace
}  // namespace vestra_test
