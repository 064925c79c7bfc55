#include "handler/report_script.h"

#include <boost/filesystem/operations.hpp>

#include "handler/report_fixture.h"
#include "handler/rules_file.h"
#include "support/interposed/c_library.h"

namespace Oza {
namespace {

TEST(ScriptLines, NameTheDirectoryThePayloadAndTheProduct) {
  EXPECT_EQ(initLine("/a b//vestra/"), "vestra_init -vestra_dir /a b//vestra/\n");
  const std::string simulators =
      "vestra_transmit -clientid 4294967295 -regid \"REG-1\" -xml /p/vestra/usage_statistics_ext_kelvo.xml"
      " -html /p/vestra/usage_statistics_ext_kelvo.html -wdm /p/vestra/usage_statistics_ext_kelvo.wdm"
      " -intro \"<H3>KELVO Usage Report</H3><BR>\"\n"
      "vestra_terminate\n";
  EXPECT_EQ(transmitLines(0xFFFFFFFFU, "REG-1", "/p/vestra/", Vestra::KELVO), simulators);
  EXPECT_EQ(transmitLines(0xFFFFFFFFU, "REG-1", "/p/vestra/", Vestra::KELVO_ALT), simulators);
  EXPECT_EQ(transmitLines(0U, "", "/p/vestra/", Vestra::TAVLO),
            "vestra_transmit -clientid 0 -regid \"\" -xml /p/vestra/usage_statistics_ext_tavlo.xml"
            " -html /p/vestra/usage_statistics_ext_tavlo.html -wdm /p/vestra/usage_statistics_ext_tavlo.wdm"
            " -intro \"<H3>TAVLO Usage Report</H3><BR>\"\n"
            "vestra_terminate\n");
}

TEST(RegistrationText, IsTheIdentifierMarkedOnAnInternalSite) {
  EXPECT_EQ(registrationText(false, Vestra::KELVO, "REG-1"), "REG-1");
  EXPECT_EQ(registrationText(true, Vestra::KELVO, "REG-1"), "VESTRA_TEST_KELVO_REG-1");
  EXPECT_EQ(registrationText(true, Vestra::KELVO_ALT, "REG-1"), "VESTRA_TEST_KELVO_REG-1");
  EXPECT_EQ(registrationText(true, Vestra::TAVLO, ""), "VESTRA_TEST_TAVLO_");
}

class ReportScript : public ReportFixture {
 protected:
  ReportScript() { writeIdentity(identityText("0", "0", "7", "0", "id")); }

  std::string wordBehind(const std::string& option) {
    const std::string text = preparedScript();
    const std::size_t begin = text.find(option) + option.size();
    return text.substr(begin, text.find(' ', begin) - begin);
  }
};

TEST_F(ReportScript, StandsBesideItsRulesAndLeavesTheIdentityAlone) {
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_THAT(namesIn(project / "vestra"),
              ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(identity(), identityText("0", "0", "7", "0", "id"));
}

TEST_F(ReportScript, HasADoubledSlashWhereTheProjectEndsInOne) {
  handler.setProjectDirectory(project.path() + "/");
  EXPECT_THAT(preparedScript(), StartsWith("vestra_init -vestra_dir " + project.path() + "//vestra/\n"));
}

TEST_F(ReportScript, HasAChecksumThatFollowsTheHour) {
  const std::string clientId = wordBehind("-clientid ");
  library.describeEnvironment("");
  const ScopedTime sameHour(1700002799);
  EXPECT_EQ(wordBehind("-clientid "), clientId);
  const ScopedTime nextHour(1700002800);
  EXPECT_NE(wordBehind("-clientid "), clientId);
}

TEST_F(ReportScript, OfAnInternalSiteHasItsRegistrationMarked) {
  const ScopedEnv noOverride("CALVIX_VESTRA_INTERNAL_TRANSMIT", std::nullopt);
  const ScopedDomainName domain("lab." VESTRA_MAKER_DOMAIN);
  EXPECT_EQ(wordBehind("-regid "), "\"VESTRA_TEST_KELVO_REG-1\"");
}

TEST_F(ReportScript, ReplacesAnotherWhateverTheHostsLocale) {
  writeFile(inVestraDirectory("kelvo_vestra.tcl"), std::string(100000, 'x'));
  const std::string plain = preparedScript();
  library.describeEnvironment("");
  for (const std::locale& locale : {digitGroupingLocale(), caseSwappingFilesLocale()}) {
    const ScopedLocale hosts(locale);
    EXPECT_EQ(preparedScript(), plain);
  }
}

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

TEST_F(ReportScript, IsLeftUnfinishedWithoutARegistration) {
  library.nameRegistration(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_THAT(script(), StartsWith("vestra_init -vestra_dir " + project.path() + "/vestra/\n"));
  EXPECT_THAT(script(), EndsWith("-key f -value \"6\" -context \"user_environment\"\n"));
}

TEST_F(ReportScript, IsNotBegunWithoutAnEnvironment) {
  library.describeEnvironment(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
  EXPECT_TRUE(exists(inVestraDirectory("usage_statistics_ext_kelvo.wdm")));
}

/// A project without a support library as yet.
class ReportScriptWithout : public ProjectFixture {
 protected:
  std::vector<std::string> names() const { return namesIn(project / "vestra"); }
};

TEST_F(ReportScriptWithout, SupportLibraryIsNotWrittenUntilItIsThere) {
  EXPECT_FALSE(handler.prepareVestraData());
  EXPECT_THAT(names(), ElementsAre(".kelvo_vestrra.info", "usage_statistics_ext_kelvo.wdm"));
  const StandInLibrary library;
  EXPECT_TRUE(handler.prepareVestraData());
}

TEST_F(ReportScriptWithout, UsableIdentityCreatesNoFileAtAll) {
  const StandInLibrary library;
  writeIdentity("abc\n");
  EXPECT_FALSE(handler.prepareVestraData());
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_EQ(library.calls(), "");
}

TEST_F(ReportScriptWithout, EntryPointIsWrittenAsFarAsThatIsNeeded) {
  const struct {
    const char* variant;
    const char* error;
    bool isWritten;
  } rows[] = {
      {"no_environment", "libqvzcommonvestrasupport.so lacks oza_vestra_enviroment_data", false},
      {"no_regid", "libqvzcommonvestrasupport.so lacks oza_vestra_regid", true},
      {"no_exec_path", "nothing was thrown", true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.variant);
    const StandInLibrary library(row.variant);
    unlink((project / "vestra/kelvo_vestra.tcl").c_str());
    EXPECT_EQ(errorOf([&] { handler.prepareVestraData(); }), row.error);
    EXPECT_EQ(exists(project / "vestra/kelvo_vestra.tcl"), row.isWritten);
  }
}

// What stands in the place of the script or the rules file.

TEST_F(ReportScript, LeavesUnusualFilesInItsPlaceOrThatOfTheRules) {
  std::vector<Obstacle> unusual = obstacles();
  for (const char* device : {"/dev/null", "/dev/zero", "/dev/full"}) {
    unusual.push_back({device, [=](const std::string& path) { makeLink(path, device); }});
  }
  for (const char* name : {"kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"}) {
    for (const Obstacle& each : unusual) {
      SCOPED_TRACE(std::string(each.name) + " as " + name);
      const std::string path = inVestraDirectory(name);
      boost::filesystem::remove(path);
      each.put(path);
      const auto type = boost::filesystem::symlink_status(path).type();
      EXPECT_TRUE(handler.prepareVestraData());
      EXPECT_EQ(boost::filesystem::symlink_status(path).type(), type);
      boost::filesystem::remove(path);
    }
  }
}

TEST_F(ReportScript, IsWrittenThroughALinkToNowhere) {
  makeLink(inVestraDirectory("kelvo_vestra.tcl"), project / "script");
  makeLink(inVestraDirectory("usage_statistics_ext_kelvo.wdm"), project / "rules");
  EXPECT_TRUE(handler.prepareVestraData());
  EXPECT_THAT(readFile(project / "script"), StartsWith("vestra_init "));
  EXPECT_EQ(readFile(project / "rules"), rulesFileText(Vestra::KELVO));
}

TEST_F(ReportScript, GoesOnInAReadOnlyDirectory) {
  const ScopedMode readOnly(project / "vestra", 0555);
  const ScopedMode identityForAll(file(), 0666);
  EXPECT_EQ(asOrdinaryUser([&] { return handler.prepareVestraData() ? "true" : "false"; }), "true");
  EXPECT_THAT(namesIn(project / "vestra"), ElementsAre(".kelvo_vestrra.info"));
}

}  // namespace
}  // namespace Oza
