#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "handler/report_fixture.h"
#include "support/child_process.h"
#include "support/error_of.h"
#include "support/files.h"
#include "support/interposed/domain_name.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/zlib_crc32.h"

namespace Oza {
namespace {

using namespace std::string_literals;
using vestra_test::errorOf;
using vestra_test::exists;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedMode;
using vestra_test::StandInLibrary;
using vestra_test::writeFile;
using vestra_test::zlibCrc32Text;

class ReportScript : public vestra_test::ReportFixture {
 protected:
  ReportScript() { writeIdentity("0\n0\n7\n0\nid\n"); }

  /// The script's lines between the first and the last two, without the items of
  /// the project's facts.
  std::string walk() {
    std::istringstream lines(preparedScript());
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
      const bool isFrame = line.rfind("vestra_init", 0) == 0 || line.rfind("vestra_transmit", 0) == 0 ||
                           line == "vestra_terminate";
      if (!isFrame && line.find("\"software_version_and_target_device\"") == std::string::npos) {
        kept += line + "\n";
      }
    }
    return kept;
  }

  static std::string wordBehind(const std::string& text, const std::string& option) {
    const std::size_t begin = text.find(option) + option.size();
    return text.substr(begin, text.find(' ', begin) - begin);
  }

  std::string clientId() const { return wordBehind(script(), "-clientid "); }
  std::string registration() const { return wordBehind(script(), "-regid "); }
};

// What the project's facts contribute to every checksum text of this fixture.
const std::string FACT_SEGMENTS =
    "date_generatednot_applicableprojectsoftware_version_and_target_device"
    "product_versionnot_applicableprojectsoftware_version_and_target_device"
    "build_versionnot_applicableprojectsoftware_version_and_target_device"
    "os_platformnot_applicableprojectsoftware_version_and_target_device"
    "registration_idnot_applicableprojectsoftware_version_and_target_device"
    "tool_flownot_applicableprojectsoftware_version_and_target_device"
    "betanot_applicableprojectsoftware_version_and_target_device"
    "route_designnot_applicableprojectsoftware_version_and_target_device"
    "target_familynot_applicableprojectsoftware_version_and_target_device"
    "target_devicenot_applicableprojectsoftware_version_and_target_device"
    "target_packagenot_applicableprojectsoftware_version_and_target_device"
    "target_speednot_applicableprojectsoftware_version_and_target_device"
    "random_idnot_applicableprojectsoftware_version_and_target_device"
    "project_ididprojectsoftware_version_and_target_device"
    "project_iteration7projectsoftware_version_and_target_device";

const std::string FACT_LINES =
    R"(vestra_add_data -client project -key date_generated -value "not_applicable" -context "software_version_and_target_device"
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
vestra_add_data -client project -key random_id -value "not_applicable" -context "software_version_and_target_device"
vestra_add_data -client project -key project_id -value "id" -context "software_version_and_target_device"
vestra_add_data -client project -key project_iteration -value "7" -context "software_version_and_target_device"
)";

const std::string ENVIRONMENT_LINES =
    R"(vestra_add_data -client project -key a -value "1" -context "user_environment"
vestra_add_data -client project -key b -value "2" -context "user_environment"
vestra_add_data -client project -key c -value "3" -context "user_environment"
vestra_add_data -client project -key d -value "4" -context "user_environment"
vestra_add_data -client project -key e -value "5" -context "user_environment"
vestra_add_data -client project -key f -value "6" -context "user_environment"
)";

TEST_F(ReportScript, ScriptOfTheSimulatorIsWhole) {
  add("verbose", "on", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  add("runs", "2", Vestra::KELVO_USAGE);
  EXPECT_TRUE(handler.prepareVestraData());
  const std::string checksumText =
      "318202322project" + FACT_SEGMENTS +
      "a1projectuser_environmentb2projectuser_environmentc3projectuser_environment"
      "d4projectuser_environmente5projectuser_environmentf6projectuser_environment"
      "kelvoverboseonkelvokelvo\\command_line_optionsruns2kelvokelvo\\usage";
  EXPECT_EQ(clientId(), zlibCrc32Text(checksumText));
  const std::string directory = project.path() + "/vestra/";
  EXPECT_EQ(script(), "vestra_init -vestra_dir " + directory +
                          "\n"
                          "vestra_register_client -client project\n" +
                          FACT_LINES + ENVIRONMENT_LINES +
                          "vestra_register_client -client kelvo\n"
                          "vestra_add_data -client kelvo -key verbose -value \"on\" -context "
                          "\"kelvo\\\\command_line_options\"\n"
                          "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage\"\n"
                          "vestra_transmit -clientid 1739469477 -regid \"REG-1\""
                          " -xml " +
                          directory +
                          "usage_statistics_ext_kelvo.xml"
                          " -html " +
                          directory +
                          "usage_statistics_ext_kelvo.html"
                          " -wdm " +
                          directory +
                          "usage_statistics_ext_kelvo.wdm"
                          " -intro \"<H3>KELVO Usage Report</H3><BR>\"\n"
                          "vestra_terminate\n");
}

TEST_F(ReportScript, ScriptOfTheLabToolIsWhole) {
  handler.setProductType(Vestra::TAVLO);
  add("probe", "on", Vestra::TAVLO_COMMAND_LINE_OPTIONS);
  EXPECT_TRUE(handler.prepareVestraData());
  const std::string checksumText =
      "318202322project" + FACT_SEGMENTS +
      "a1projectuser_environmentb2projectuser_environmentc3projectuser_environment"
      "d4projectuser_environmente5projectuser_environmentf6projectuser_environment"
      "tavloprobeontavlotavlo\\command_line_options";
  const std::string text = readFile(inVestraDirectory("tavlo_vestra.tcl"));
  EXPECT_EQ(wordBehind(text, "-clientid "), zlibCrc32Text(checksumText));
  const std::string directory = project.path() + "/vestra/";
  EXPECT_EQ(text, "vestra_init -vestra_dir " + directory +
                      "\n"
                      "vestra_register_client -client project\n" +
                      FACT_LINES + ENVIRONMENT_LINES +
                      "vestra_register_client -client tavlo\n"
                      "vestra_add_data -client tavlo -key probe -value \"on\" -context "
                      "\"tavlo\\\\command_line_options\"\n"
                      "vestra_transmit -clientid 3820863964 -regid \"REG-1\""
                      " -xml " +
                      directory +
                      "usage_statistics_ext_tavlo.xml"
                      " -html " +
                      directory +
                      "usage_statistics_ext_tavlo.html"
                      " -wdm " +
                      directory +
                      "usage_statistics_ext_tavlo.wdm"
                      " -intro \"<H3>TAVLO Usage Report</H3><BR>\"\n"
                      "vestra_terminate\n");
}

TEST_F(ReportScript, ScriptOfTheAlternativeSimulatorIsTheSimulators) {
  const std::string simulators = preparedScript();
  handler.setProductType(Vestra::KELVO_ALT);
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), simulators);
}

TEST_F(ReportScript, ScriptStandsBesideItsRulesFile) {
  handler.prepareVestraData();
  EXPECT_EQ(namesIn(project / "vestra"), (std::vector<std::string>{".kelvo_vestrra.info", "kelvo_vestra.tcl",
                                                                   "usage_statistics_ext_kelvo.wdm"}));
}

TEST_F(ReportScript, ScriptDoesNotTouchTheIdentityFile) {
  handler.prepareVestraData();
  EXPECT_EQ(identity(), "0\n0\n7\n0\nid\n");
}

TEST_F(ReportScript, ScriptOfANewProjectReportsTheFirstIteration) {
  unlink(inVestraDirectory(".kelvo_vestrra.info").c_str());
  EXPECT_NE(preparedScript().find("-key project_iteration -value \"1\""), std::string::npos);
}

TEST_F(ReportScript, ScriptNamesTheDirectoryWithADoubledSlashWhereTheProjectEndsInOne) {
  handler.setProjectDirectory(project.path() + "/");
  const std::string text = preparedScript();
  EXPECT_EQ(text.substr(0, text.find('\n')), "vestra_init -vestra_dir " + project.path() + "//vestra/");
}

// The walk over the contexts: two empty neighbours are skipped together.

TEST_F(ReportScript, ScriptWithTheProjectsContextsRegistersTheProjectOnly) {
  EXPECT_EQ(walk(), "vestra_register_client -client project\n" + ENVIRONMENT_LINES);
  EXPECT_EQ(clientId(), zlibCrc32Text("318202322project" + FACT_SEGMENTS +
                                      "a1projectuser_environmentb2projectuser_environment"
                                      "c3projectuser_environmentd4projectuser_environment"
                                      "e5projectuser_environmentf6projectuser_environment"));
}

TEST_F(ReportScript, ScriptWithTheFirstContextAloneSkipsTwoPairsAndVisitsTheLast) {
  library.describeEnvironment("");
  EXPECT_EQ(walk(), "vestra_register_client -client project\n");
  EXPECT_EQ(clientId(), zlibCrc32Text("318202322project" + FACT_SEGMENTS));
}

TEST_F(ReportScript, ScriptWithTheFirstAndTheUsageContextLeavesTheClientUnregistered) {
  library.describeEnvironment("");
  add("runs", "2", Vestra::KELVO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n"
            "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage\"\n");
  EXPECT_EQ(clientId(), zlibCrc32Text("318202322project" + FACT_SEGMENTS + "runs2kelvokelvo\\usage"));
}

TEST_F(ReportScript, ScriptWithAnEnvironmentAndTheUsageContextRegistersTheClient) {
  add("runs", "2", Vestra::KELVO_USAGE);
  EXPECT_EQ(walk(), "vestra_register_client -client project\n" + ENVIRONMENT_LINES +
                        "vestra_register_client -client kelvo\n"
                        "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage\"\n");
}

TEST_F(ReportScript, ScriptWithTheOptionsContextVisitsTheEmptyOneBeforeIt) {
  library.describeEnvironment("");
  add("verbose", "on", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n"
            "vestra_register_client -client kelvo\n"
            "vestra_add_data -client kelvo -key verbose -value \"on\" -context "
            "\"kelvo\\\\command_line_options\"\n");
  EXPECT_EQ(clientId(), zlibCrc32Text("318202322project" + FACT_SEGMENTS +
                                      "kelvoverboseonkelvokelvo\\command_line_options"));
}

TEST_F(ReportScript, ScriptWithTheLastContextAloneLeavesItsClientUnregistered) {
  library.describeEnvironment("");
  add("probes", "3", Vestra::TAVLO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n"
            "vestra_add_data -client tavlo -key probes -value \"3\" -context \"tavlo\\\\usage\"\n");
}

TEST_F(ReportScript, ScriptWithAnEnvironmentAndTheLastContextRegistersItsClient) {
  add("probes", "3", Vestra::TAVLO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n" + ENVIRONMENT_LINES +
                "vestra_register_client -client tavlo\n"
                "vestra_add_data -client tavlo -key probes -value \"3\" -context \"tavlo\\\\usage\"\n");
}

TEST_F(ReportScript, ScriptWithOptionsAndTheLastContextSkipsTheUsageAndTheNextClientsFirst) {
  add("verbose", "on", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  add("probes", "3", Vestra::TAVLO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n" + ENVIRONMENT_LINES +
                "vestra_register_client -client kelvo\n"
                "vestra_add_data -client kelvo -key verbose -value \"on\" -context "
                "\"kelvo\\\\command_line_options\"\n"
                "vestra_add_data -client tavlo -key probes -value \"3\" -context \"tavlo\\\\usage\"\n");
}

TEST_F(ReportScript, ScriptWithEveryContextRegistersEveryClient) {
  add("verbose", "on", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  add("runs", "2", Vestra::KELVO_USAGE);
  add("probe", "on", Vestra::TAVLO_COMMAND_LINE_OPTIONS);
  add("probes", "3", Vestra::TAVLO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n" + ENVIRONMENT_LINES +
                "vestra_register_client -client kelvo\n"
                "vestra_add_data -client kelvo -key verbose -value \"on\" -context "
                "\"kelvo\\\\command_line_options\"\n"
                "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage\"\n"
                "vestra_register_client -client tavlo\n"
                "vestra_add_data -client tavlo -key probe -value \"on\" -context "
                "\"tavlo\\\\command_line_options\"\n"
                "vestra_add_data -client tavlo -key probes -value \"3\" -context \"tavlo\\\\usage\"\n");
}

TEST_F(ReportScript, ScriptKeepsItemsWithTheSameKeyInCallOrder) {
  library.describeEnvironment("");
  add("Runs", "2", Vestra::KELVO_USAGE);
  add("Runs", "1", Vestra::KELVO_USAGE);
  EXPECT_EQ(walk(),
            "vestra_register_client -client project\n"
            "vestra_add_data -client kelvo -key Runs -value \"2\" -context \"kelvo\\\\usage\"\n"
            "vestra_add_data -client kelvo -key Runs -value \"1\" -context \"kelvo\\\\usage\"\n");
}

/// Writes down what it is asked for.
class AskedNode : public VestraDataInterface {
 public:
  explicit AskedNode(std::string& questions) : asked(questions) {}
  std::string toTclString() override {
    asked += "line, ";
    return "# a host's own\n";
  }
  std::string toCRCSegment() override {
    asked += "segment, ";
    return "";
  }
  std::string getClient() override { return "kelvo"; }

 private:
  std::string& asked;
};

TEST_F(ReportScript, ScriptAsksEachNodeOnceForItsLineAndThenForItsSegment) {
  std::string asked;
  handler.addData(new AskedNode(asked), Vestra::USER_ENVIRONMENT);
  handler.addData(new AskedNode(asked), Vestra::KELVO_USAGE);
  EXPECT_NE(preparedScript().find("# a host's own\n"), std::string::npos);
  EXPECT_EQ(asked, "line, segment, line, segment, ");
}

TEST_F(ReportScript, ChecksumEndsAtTheFirstNul) {
  library.describeEnvironment("");
  add("k\0x"s, "v", Vestra::KELVO_USAGE);
  handler.prepareVestraData();
  EXPECT_EQ(clientId(), zlibCrc32Text("318202322project" + FACT_SEGMENTS + "k"));
}

TEST_F(ReportScript, ChecksumFollowsTheHour) {
  library.describeEnvironment("");
  const vestra_test::ScopedTime nextHour(1700003600);
  handler.prepareVestraData();
  EXPECT_EQ(clientId(), zlibCrc32Text("318202323project" + FACT_SEGMENTS));
}

TEST_F(ReportScript, ScriptOfAnExternalSiteHasTheBareRegistration) {
  const vestra_test::ScopedDomainName domain("elsewhere.example");
  handler.prepareVestraData();
  EXPECT_EQ(registration(), "\"REG-1\"");
}

TEST_F(ReportScript, ScriptOfAnInternalSiteMarksTheRegistrationAsATest) {
  const vestra_test::ScopedEnv noOverride("CALVIX_VESTRA_INTERNAL_TRANSMIT", std::nullopt);
  const vestra_test::ScopedDomainName domain("lab." VESTRA_MAKER_DOMAIN);
  handler.prepareVestraData();
  EXPECT_EQ(registration(), "\"VESTRA_TEST_KELVO_REG-1\"");
  handler.setProductType(Vestra::TAVLO);
  handler.prepareVestraData();
  EXPECT_NE(readFile(inVestraDirectory("tavlo_vestra.tcl")).find("-regid \"VESTRA_TEST_TAVLO_REG-1\""),
            std::string::npos);
}

TEST_F(ReportScript, ScriptOfAnInternalSiteUnderTheOverrideHasTheBareRegistration) {
  const vestra_test::ScopedEnv set("CALVIX_VESTRA_INTERNAL_TRANSMIT", "1");
  const vestra_test::ScopedDomainName domain("lab." VESTRA_MAKER_DOMAIN);
  handler.prepareVestraData();
  EXPECT_EQ(registration(), "\"REG-1\"");
}

TEST_F(ReportScript, ScriptTakesTheRegistrationAsItIs) {
  library.nameRegistration("");
  handler.prepareVestraData();
  EXPECT_EQ(registration(), "\"\"");
}

TEST_F(ReportScript, ScriptHasOurNumbersUnderTheHostsLocale) {
  const std::string plain = preparedScript();
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), plain);
}

TEST_F(ReportScript, ScriptHasOurBytesUnderTheHostsLocale) {
  const std::string plain = preparedScript();
  const vestra_test::ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), plain);
}

TEST_F(ReportScript, ScriptIsReplacedAndNotAppendedTo) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), std::string(100000, 'x'));
  const std::string first = preparedScript();
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), first);
}

TEST_F(ReportScript, ScriptOfASecondPreparationHasTheEnvironmentTwice) {
  handler.prepareVestraData();
  EXPECT_EQ(walk(), "vestra_register_client -client project\n" + ENVIRONMENT_LINES + ENVIRONMENT_LINES);
}

// The support library.

TEST_F(ReportScript, ScriptAsksTheSupportLibraryForEnvironmentAndRegistration) {
  handler.prepareVestraData();
  EXPECT_EQ(library.calls(),
            "oza_vestra_enviroment_data(KELVO)\n"
            "oza_vestra_regid(Implementation)\n");
}

TEST_F(ReportScript, ScriptOfTheLabToolAsksForTheEnvironmentWithNull) {
  handler.setProductType(Vestra::TAVLO);
  handler.prepareVestraData();
  EXPECT_EQ(library.calls(),
            "oza_vestra_enviroment_data(null)\n"
            "oza_vestra_regid(Implementation)\n");
}

TEST_F(ReportScript, ScriptOfAnotherHandlerUsesTheLibraryThatIsOpen) {
  handler.prepareVestraData();
  VestraHandler another;
  another.setProjectDirectory(project / "another");
  EXPECT_TRUE(another.prepareVestraData());
}

TEST_F(ReportScript, ScriptIsLeftUnfinishedWithoutARegistration) {
  library.nameRegistration(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_EQ(script(), "vestra_init -vestra_dir " + project.path() +
                          "/vestra/\n"
                          "vestra_register_client -client project\n" +
                          FACT_LINES + ENVIRONMENT_LINES);
}

TEST_F(ReportScript, ScriptIsNotBegunWithoutAnEnvironment) {
  library.describeEnvironment(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
  EXPECT_TRUE(exists(inVestraDirectory("usage_statistics_ext_kelvo.wdm")));
}

/// A project and a handler, without a support library as yet.
class ReportScriptWithout : public testing::Test {
 protected:
  ReportScriptWithout() { handler.setProjectDirectory(project.path()); }

  std::string inVestraDirectory(const std::string& name) const { return project / "vestra/" + name; }

  vestra_test::TemporaryDirectory project;
  VestraHandler handler;
};

TEST_F(ReportScriptWithout, SupportLibraryIsNotWrittenButTheRulesFileIs) {
  EXPECT_FALSE(handler.prepareVestraData());
  EXPECT_EQ(namesIn(project / "vestra"),
            (std::vector<std::string>{".kelvo_vestrra.info", "usage_statistics_ext_kelvo.wdm"}));
}

TEST_F(ReportScriptWithout, SupportLibraryIsTriedAgainAtTheNextPreparation) {
  EXPECT_FALSE(handler.prepareVestraData());
  const StandInLibrary library;
  EXPECT_TRUE(handler.prepareVestraData());
}

TEST_F(ReportScriptWithout, UsableIdentityMakesNoFileAtAll) {
  const StandInLibrary library;
  writeFile(inVestraDirectory(".kelvo_vestrra.info"), "abc\n");
  EXPECT_FALSE(handler.prepareVestraData());
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});
  EXPECT_EQ(library.calls(), "");
}

TEST_F(ReportScriptWithout, RegistrationsEntryPointIsLeftUnfinished) {
  const StandInLibrary library("no_regid");
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_regid");
  EXPECT_TRUE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(ReportScriptWithout, EnvironmentsEntryPointIsNotBegun) {
  const StandInLibrary library("no_environment");
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_enviroment_data");
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(ReportScriptWithout, ToolsEntryPointIsWritten) {
  const StandInLibrary library("no_exec_path");
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_TRUE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

// What stands in the script's place.

TEST_F(ReportScript, DirectoryInItsPlaceIsNotNoticed) {
  makeDirectory(inVestraDirectory("kelvo_vestra.tcl"));
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_EQ(namesIn(inVestraDirectory("kelvo_vestra.tcl")), std::vector<std::string>{});
}

TEST_F(ReportScript, NamedPipeInItsPlaceIsNotWaitedFor) {
  makeNamedPipe(inVestraDirectory("kelvo_vestra.tcl"));
  EXPECT_TRUE(handler.prepareVestraData());
}

TEST_F(ReportScript, SocketInItsPlaceIsNotNoticed) {
  makeSocket(inVestraDirectory("kelvo_vestra.tcl"));
  EXPECT_TRUE(handler.prepareVestraData());
}

TEST_F(ReportScript, LinkToItselfIsNotNoticed) {
  makeLink(inVestraDirectory("kelvo_vestra.tcl"), "kelvo_vestra.tcl");
  EXPECT_TRUE(handler.prepareVestraData());
}

TEST_F(ReportScript, LinkToNowhereIsFilled) {
  makeLink(inVestraDirectory("kelvo_vestra.tcl"), project / "elsewhere");
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_EQ(readFile(project / "elsewhere").substr(0, 12), "vestra_init ");
}

TEST_F(ReportScript, DevicesSwallowIt) {
  for (const char* device : {"/dev/null", "/dev/zero", "/dev/full"}) {
    makeLink(inVestraDirectory("kelvo_vestra.tcl"), device);
    EXPECT_TRUE(handler.prepareVestraData());
    unlink(inVestraDirectory("kelvo_vestra.tcl").c_str());
  }
}

TEST_F(ReportScript, ReadOnlyDirectoryIsNotNoticed) {
  const ScopedMode identityForAll(inVestraDirectory(".kelvo_vestrra.info"), 0666);
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.prepareVestraData() ? "true" : "false"; }),
            "true");
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{".kelvo_vestrra.info"});
}

TEST_F(ReportScript, ReadOnlyScriptIsNotNoticed) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), "old");
  const ScopedMode identityForAll(inVestraDirectory(".kelvo_vestrra.info"), 0666);
  const ScopedMode readOnly(inVestraDirectory("kelvo_vestra.tcl"), 0444);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.prepareVestraData() ? "true" : "false"; }),
            "true");
  EXPECT_EQ(script(), "old");
}

}  // namespace
}  // namespace Oza
