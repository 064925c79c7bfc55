#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <boost/filesystem/operations.hpp>

#include "handler/report_fixture.h"
#include "handler/report_script.h"
#include "handler/rules_file.h"
#include "support/child_process.h"
#include "support/error_of.h"
#include "support/files.h"
#include "support/interposed/domain_name.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"

namespace Oza {
namespace {

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

class ReportScript : public vestra_test::ReportFixture {
 protected:
  ReportScript() { writeIdentity("0\n0\n7\n0\nid\n"); }

  static std::string wordBehind(const std::string& text, const std::string& option) {
    const std::size_t begin = text.find(option) + option.size();
    return text.substr(begin, text.find(' ', begin) - begin);
  }
};

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

TEST_F(ReportScript, OfTheSimulatorIsWhole) {
  add("verbose", "on", Vestra::KELVO_COMMAND_LINE_OPTIONS);
  add("runs", "2", Vestra::KELVO_USAGE);
  EXPECT_TRUE(handler.prepareVestraData());
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

TEST_F(ReportScript, OfTheLabToolIsWhole) {
  handler.setProductType(Vestra::TAVLO);
  add("probe", "on", Vestra::TAVLO_COMMAND_LINE_OPTIONS);
  EXPECT_TRUE(handler.prepareVestraData());
  const std::string text = readFile(inVestraDirectory("tavlo_vestra.tcl"));
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

TEST_F(ReportScript, OfTheAlternativeSimulatorIsTheSimulators) {
  const std::string simulators = preparedScript();
  handler.setProductType(Vestra::KELVO_ALT);
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), simulators);
}

TEST_F(ReportScript, StandsBesideItsRulesFile) {
  handler.prepareVestraData();
  EXPECT_EQ(namesIn(project / "vestra"), (std::vector<std::string>{".kelvo_vestrra.info", "kelvo_vestra.tcl",
                                                                   "usage_statistics_ext_kelvo.wdm"}));
}

TEST_F(ReportScript, DoesNotTouchTheIdentityFile) {
  handler.prepareVestraData();
  EXPECT_EQ(identity(), "0\n0\n7\n0\nid\n");
}

TEST_F(ReportScript, OfANewProjectReportsTheFirstIteration) {
  unlink(inVestraDirectory(".kelvo_vestrra.info").c_str());
  EXPECT_NE(preparedScript().find("-key project_iteration -value \"1\""), std::string::npos);
}

TEST_F(ReportScript, NamesTheDirectoryWithADoubledSlashWhereTheProjectEndsInOne) {
  handler.setProjectDirectory(project.path() + "/");
  const std::string text = preparedScript();
  EXPECT_EQ(text.substr(0, text.find('\n')), "vestra_init -vestra_dir " + project.path() + "//vestra/");
}

TEST_F(ReportScript, ChecksumFollowsTheHour) {
  const std::string clientId = wordBehind(preparedScript(), "-clientid ");
  library.describeEnvironment("");
  const vestra_test::ScopedTime sameHour(1700002799);
  EXPECT_EQ(wordBehind(preparedScript(), "-clientid "), clientId);
  const vestra_test::ScopedTime nextHour(1700002800);
  EXPECT_NE(wordBehind(preparedScript(), "-clientid "), clientId);
}

TEST(RegistrationText, IsTheIdentifierMarkedOnAnInternalSite) {
  EXPECT_EQ(registrationText(false, Vestra::KELVO, "REG-1"), "REG-1");
  EXPECT_EQ(registrationText(true, Vestra::KELVO, "REG-1"), "VESTRA_TEST_KELVO_REG-1");
  EXPECT_EQ(registrationText(true, Vestra::KELVO_ALT, "REG-1"), "VESTRA_TEST_KELVO_REG-1");
  EXPECT_EQ(registrationText(true, Vestra::TAVLO, ""), "VESTRA_TEST_TAVLO_");
}

TEST_F(ReportScript, OfAnInternalSiteHasItsRegistrationMarked) {
  const vestra_test::ScopedEnv noOverride("CALVIX_VESTRA_INTERNAL_TRANSMIT", std::nullopt);
  const vestra_test::ScopedDomainName domain("lab." VESTRA_MAKER_DOMAIN);
  EXPECT_EQ(wordBehind(preparedScript(), "-regid "), "\"VESTRA_TEST_KELVO_REG-1\"");
}

TEST_F(ReportScript, HasOurNumbersUnderTheHostsLocale) {
  const std::string plain = preparedScript();
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), plain);
}

TEST_F(ReportScript, HasOurBytesUnderTheHostsLocale) {
  const std::string plain = preparedScript();
  const vestra_test::ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), plain);
}

TEST_F(ReportScript, IsReplacedAndNotAppendedTo) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), std::string(100000, 'x'));
  const std::string first = preparedScript();
  library.describeEnvironment("");
  EXPECT_EQ(preparedScript(), first);
}

TEST_F(ReportScript, OfASecondPreparationHasTheEnvironmentTwice) {
  handler.prepareVestraData();
  EXPECT_NE(preparedScript().find(FACT_LINES + ENVIRONMENT_LINES + ENVIRONMENT_LINES), std::string::npos);
}

// The support library.

TEST_F(ReportScript, AsksTheSupportLibraryForEnvironmentAndRegistration) {
  handler.prepareVestraData();
  handler.setProductType(Vestra::TAVLO);
  handler.prepareVestraData();
  EXPECT_EQ(library.calls(),
            "oza_vestra_enviroment_data(KELVO)\n"
            "oza_vestra_regid(Implementation)\n"
            "oza_vestra_enviroment_data(null)\n"
            "oza_vestra_regid(Implementation)\n");
}

TEST_F(ReportScript, OfAnotherHandlerUsesTheLibraryThatIsOpen) {
  handler.prepareVestraData();
  VestraHandler another;
  another.setProjectDirectory(project / "another");
  EXPECT_TRUE(another.prepareVestraData());
}

TEST_F(ReportScript, IsLeftUnfinishedWithoutARegistration) {
  library.nameRegistration(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_EQ(script(), "vestra_init -vestra_dir " + project.path() +
                          "/vestra/\n"
                          "vestra_register_client -client project\n" +
                          FACT_LINES + ENVIRONMENT_LINES);
}

TEST_F(ReportScript, IsNotBegunWithoutAnEnvironment) {
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

// What stands in the place of the script or the rules file.

struct UnusualFile {
  const char* name;
  void (*make)(const std::string& path);
};

const UnusualFile UNUSUAL_FILES[] = {
    {"directory", [](const std::string& path) { makeDirectory(path); }},
    {"named pipe", [](const std::string& path) { makeNamedPipe(path); }},
    {"socket", [](const std::string& path) { makeSocket(path); }},
    {"link to itself", [](const std::string& path) { makeLink(path, path); }},
    {"/dev/null", [](const std::string& path) { makeLink(path, "/dev/null"); }},
    {"/dev/zero", [](const std::string& path) { makeLink(path, "/dev/zero"); }},
    {"/dev/full", [](const std::string& path) { makeLink(path, "/dev/full"); }}};

TEST_F(ReportScript, UnusualFilesInItsPlaceOrThatOfTheRulesStay) {
  for (const char* name : {"kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"}) {
    for (const UnusualFile& unusual : UNUSUAL_FILES) {
      SCOPED_TRACE(std::string(unusual.name) + " as " + name);
      const std::string path = inVestraDirectory(name);
      boost::filesystem::remove(path);
      unusual.make(path);
      const auto type = boost::filesystem::symlink_status(path).type();
      EXPECT_TRUE(handler.prepareVestraData());
      EXPECT_EQ(boost::filesystem::symlink_status(path).type(), type);
      boost::filesystem::remove(path);
    }
  }
}

TEST_F(ReportScript, LinksToNowhereAreFilled) {
  makeLink(inVestraDirectory("kelvo_vestra.tcl"), project / "script");
  makeLink(inVestraDirectory("usage_statistics_ext_kelvo.wdm"), project / "rules");
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_EQ(readFile(project / "script").substr(0, 12), "vestra_init ");
  EXPECT_EQ(readFile(project / "rules"), rulesFileText(Vestra::KELVO));
}

TEST_F(ReportScript, ReadOnlyDirectoryIsNotNoticed) {
  const ScopedMode identityForAll(inVestraDirectory(".kelvo_vestrra.info"), 0666);
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.prepareVestraData() ? "true" : "false"; }),
            "true");
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{".kelvo_vestrra.info"});
}

TEST_F(ReportScript, ThatIsReadOnlyIsNotNoticed) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), "old");
  const ScopedMode identityForAll(inVestraDirectory(".kelvo_vestrra.info"), 0666);
  const ScopedMode readOnly(inVestraDirectory("kelvo_vestra.tcl"), 0444);
  // Whatever the umask: who may write the directory replaces another owner's file.
  const ScopedMode ownersOnly(project / "vestra", 0755);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.prepareVestraData() ? "true" : "false"; }),
            "true");
  EXPECT_EQ(script(), "old");
}

}  // namespace
}  // namespace Oza
