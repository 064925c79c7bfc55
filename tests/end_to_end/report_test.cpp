// What a report consists of: the script, the rules, the command line and what the
// design tool makes of them.

#include <ctime>
#include <regex>

#include <boost/algorithm/string/replace.hpp>

#include "support/report_check.h"
#include "support/scenario/scenario.h"

namespace vestra_test {
namespace {

using Report = Scenario;

constexpr Vestra::SectionType PROJECT = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

/// The lines that both products' scripts begin with. D stands for the vestra directory.
const char* const PROJECT_LINES = R"(vestra_init -vestra_dir D
vestra_register_client -client project
vestra_add_data -client project -key date_generated -value "2026-11-21" -context "software_version_and_target_device"
vestra_add_data -client project -key product_version -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key build_version -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key os_platform -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key registration_id -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key tool_flow -value "TOOL_FLOW" -context "software_version_and_target_device"
vestra_add_data -client project -key beta -value "BETA" -context "software_version_and_target_device"
vestra_add_data -client project -key route_design -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_family -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_device -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_package -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key target_speed -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key random_id -value "0f0e0d0c-0b0a-4908-8706-050403020100" -context "software_version_and_target_device"
vestra_add_data -client project -key project_id -value "PROJECT_ID" -context "software_version_and_target_device"
vestra_add_data -client project -key project_iteration -value "ITERATION" -context "software_version_and_target_device"
vestra_add_data -client project -key os_name -value "Linux" -context "user_environment"
vestra_add_data -client project -key os_release -value "12" -context "user_environment"
vestra_add_data -client project -key cpu_name -value "X1" -context "user_environment"
vestra_add_data -client project -key cpu_speed -value "3 GHz" -context "user_environment"
vestra_add_data -client project -key total_processors -value "8" -context "user_environment"
vestra_add_data -client project -key system_ram -value "32 GB" -context "user_environment"
)";

// The checksum holds the hour.
const char* const SIMULATORS_LINES = R"(vestra_register_client -client kelvo
vestra_add_data -client kelvo -key mode -value "batch" -context "kelvo\\command_line_options"
vestra_add_data -client kelvo -key Runs -value "2" -context "kelvo\\usage"
vestra_add_data -client kelvo -key Runs -value "3" -context "kelvo\\usage"
vestra_transmit -clientid CHECKSUM -regid "REG-1" -xml Dusage_statistics_ext_kelvo.xml -html Dusage_statistics_ext_kelvo.html -wdm Dusage_statistics_ext_kelvo.wdm -intro "<H3>KELVO Usage Report</H3><BR>"
vestra_terminate
)";

// Contexts 2 and 3 are empty and skipped together; 4 is visited with 5.
const char* const LAB_TOOLS_LINES = R"(vestra_register_client -client tavlo
vestra_add_data -client tavlo -key probes -value "4" -context "tavlo\\usage"
vestra_transmit -clientid CHECKSUM -regid "REG-1" -xml Dusage_statistics_ext_tavlo.xml -html Dusage_statistics_ext_tavlo.html -wdm Dusage_statistics_ext_tavlo.wdm -intro "<H3>TAVLO Usage Report</H3><BR>"
vestra_terminate
)";

class WholeScript : public Report {
 protected:
  WholeScript() { writeSettings("RandomID=0f0e0d0c-0b0a-4908-8706-050403020100\n"); }

  /// @param values  What stands for the words in the lines.
  void expectScript(const HostRun& run, const char* productsLines,
                    const std::vector<std::pair<const char*, const char*>>& values) {
    std::string expected = std::string(PROJECT_LINES) + productsLines;
    for (const auto& [word, value] : values) {
      boost::algorithm::replace_all(expected, std::string("\"") + word + "\"",
                                    std::string("\"") + value + "\"");
    }
    boost::algorithm::replace_all(expected, " D", " " + inVestraDirectory(""));
    EXPECT_EQ(std::regex_replace(run.script, std::regex("-clientid [0-9]+ "), "-clientid CHECKSUM "),
              expected);
    EXPECT_TRUE(isChecksumRight(run.script, std::time(nullptr)));
  }
};

TEST_F(WholeScript, OfTheSimulator) {
  writeIdentity(identityText("0", "0", "7", "0", "project-7"));
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("Beta", "TRUE", PROJECT);
    Vestra::add("unknown", "x", PROJECT);
    Vestra::add("mode", "batch", Vestra::KELVO_COMMAND_LINE_OPTIONS);
    Vestra::add("Runs", "2", Vestra::KELVO_USAGE);
    Vestra::add("Runs", "3", Vestra::KELVO_USAGE);
  });
  expectScript(
      run, SIMULATORS_LINES,
      {{"TOOL_FLOW", "not_applicable"}, {"BETA", "TRUE"}, {"PROJECT_ID", "project-7"}, {"ITERATION", "7"}});
}

TEST_F(WholeScript, OfTheLabTool) {
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {
    Vestra::add("PROJECT_ID", "the-hosts", PROJECT);
    Vestra::add("probes", "4", Vestra::TAVLO_USAGE);
  });
  expectScript(run, LAB_TOOLS_LINES,
               {{"TOOL_FLOW", "kelvo_orbelo"},
                {"BETA", "not_applicable"},
                {"PROJECT_ID", "the-hosts"},
                {"ITERATION", "1"}});
  EXPECT_THAT(run.identity->text, MatchesRegex(identityText(ANY_TIME, "0", "2", "1", "the-hosts")));
}

TEST_F(Report, IsReadByTheDesignToolAsItWasAdded) {
  const HostRun run = sandbox.run(Vestra::KELVO, [] {
    Vestra::add("Target_Device", "x7", PROJECT);
    Vestra::add("mode", "batch {with} braces; and #", Vestra::KELVO_COMMAND_LINE_OPTIONS);
    Vestra::add("path", "/a b/\xC3\xA4", Vestra::KELVO_USAGE);
  });
  EXPECT_THAT(run, WasSent());
  EXPECT_THAT(run, HasNoHazards());
  EXPECT_THAT(run, HasItem(PROJECT, "target_device", "x7"));
  EXPECT_THAT(run, HasItem(PROJECT, "project_iteration", "1"));
  EXPECT_THAT(run, HasItem(PROJECT, "random_id", run.settings->randomId));
  EXPECT_THAT(run, HasItem(PROJECT, "project_id", *run.identity->projectId));
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

TEST_F(Report, HasRulesThatMapTheProjectAndTheProduct) {
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

TEST_F(Report, OfTheSimulatorStartsTheToolWithScriptAndRulesOnDisk) {
  const std::string copies = sandbox.directory() + "/copies";
  const std::string tool =
      useTool("printf '%s\\n' \"$@\"; pwd; LC_ALL=C ls -A " + inVestraDirectory("") + "; cp -r " +
              inVestraDirectory("") + " " + copies + "; echo tool error >&2");
  const HostRun run = sandbox.run(Vestra::KELVO, [] {});
  const std::string script = inVestraDirectory("kelvo_vestra.tcl");
  EXPECT_EQ(run.answer, true);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].commandLine, tool + " -mode batch -source " + script + " -notrace ");
  EXPECT_EQ(run.toolRuns[0].status, 0);
  // The simulator's tool writes to the host's own output.
  EXPECT_EQ(run.toolRuns[0].output, "-mode\nbatch\n-source\n" + script + "\n-notrace\n" +
                                        sandbox.directory() +
                                        "\n.kelvo_vestrra.info\nkelvo_vestra.tcl\n"
                                        "usage_statistics_ext_kelvo.wdm\ntool error\n");
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_EQ(readFile(copies + "/kelvo_vestra.tcl"), run.script);
  EXPECT_EQ(readFile(copies + "/usage_statistics_ext_kelvo.wdm"), run.rulesFile);
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info"));
}

TEST_F(Report, OfTheLabToolLeavesTheToolsOutputInItsLog) {
  const std::string log = inVestraDirectory("tavlo_vestra.log");
  writeFile(log, "an old log\n");
  const std::string tool = useTool("echo tool output; echo tool error >&2");
  const HostRun run = sandbox.run(Vestra::TAVLO, [] {});
  EXPECT_EQ(run.answer, true);
  ASSERT_THAT(run.toolRuns, SizeIs(1));
  EXPECT_EQ(run.toolRuns[0].commandLine, tool + " -mode batch -source " +
                                             inVestraDirectory("tavlo_vestra.tcl") + " -notrace  > " + log +
                                             " 2>&1");
  EXPECT_EQ(readFile(log), "tool output\ntool error\n");
  EXPECT_THAT(run, EndedQuietly());
  EXPECT_THAT(filesInVestraDirectory(), ElementsAre(".kelvo_vestrra.info", "tavlo_vestra.log"));
}

}  // namespace
}  // namespace vestra_test
