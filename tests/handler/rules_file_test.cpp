#include <gtest/gtest.h>

#include <libconfig.h++>

#include <algorithm>
#include <string>
#include <vector>

#include "handler/vestra_handler.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using vestra_test::exists;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::ScopedMode;
using vestra_test::writeFile;

const std::string SIMULATOR_RULES =
    "version = \"1.0\";\n"
    "clients =\n"
    "(\n"
    "    { client_name = \"project\"; \n"
    "        rules = ( \n"
    "            { \n"
    "                context=\"software_version_and_target_device\";\n"
    "                xml_map=\"software_version_and_target_device\";\n"
    "                html_map=\"software_version_and_target_device\";\n"
    "                html_format=\"UserEnvStyle\";\n"
    "            },\n"
    "            { \n"
    "                context=\"user_environment\";\n"
    "                xml_map=\"user_environment\";\n"
    "                html_map=\"user_environment\";\n"
    "                html_format=\"UserEnvStyle\";\n"
    "            }\n"
    "        );\n"
    "        },\n"
    "\n"
    "    { client_name = \"kelvo\"; \n"
    "        rules = ( \n"
    "            { \n"
    "                context=\"kelvo\\\\command_line_options\";\n"
    "                xml_map=\"kelvo\\\\command_line_options\";\n"
    "                html_map=\"kelvo\\\\command_line_options\";\n"
    "                html_format=\"FennoxStatsStyle\";\n"
    "            },\n"
    "            { \n"
    "                context=\"kelvo\\\\usage\";\n"
    "                xml_map=\"kelvo\\\\usage\";\n"
    "                html_map=\"kelvo\\\\usage\";\n"
    "                html_format=\"FennoxStatsStyle\";\n"
    "            }\n"
    "        );\n"
    "        }\n"
    ");\n"
    "\n";

const std::string LAB_TOOL_RULES =
    "version = \"1.0\";\n"
    "clients =\n"
    "(\n"
    "    { client_name = \"project\"; \n"
    "        rules = ( \n"
    "            { \n"
    "                context=\"software_version_and_target_device\";\n"
    "                xml_map=\"software_version_and_target_device\";\n"
    "                html_map=\"software_version_and_target_device\";\n"
    "                html_format=\"UserEnvStyle\";\n"
    "            },\n"
    "            { \n"
    "                context=\"user_environment\";\n"
    "                xml_map=\"user_environment\";\n"
    "                html_map=\"user_environment\";\n"
    "                html_format=\"UserEnvStyle\";\n"
    "            }\n"
    "        );\n"
    "        },\n"
    "\n"
    "    { client_name = \"tavlo\"; \n"
    "        rules = ( \n"
    "            { \n"
    "                context=\"tavlo\\\\command_line_options\";\n"
    "                xml_map=\"tavlo\\\\command_line_options\";\n"
    "                html_map=\"tavlo\\\\command_line_options\";\n"
    "                html_format=\"FennoxStatsStyle\";\n"
    "            },\n"
    "            { \n"
    "                context=\"tavlo\\\\usage\";\n"
    "                xml_map=\"tavlo\\\\usage\";\n"
    "                html_map=\"tavlo\\\\usage\";\n"
    "                html_format=\"FennoxStatsStyle\";\n"
    "            }\n"
    "        );\n"
    "        }\n"
    ");\n"
    "\n";

class RulesFile : public testing::Test {
 protected:
  RulesFile() {
    makeDirectory(project / "vestra");
    handler.setProjectDirectory(project.path());
  }

  std::string simulatorFile() const { return project / "vestra/usage_statistics_ext_kelvo.wdm"; }
  std::string labToolFile() const { return project / "vestra/usage_statistics_ext_tavlo.wdm"; }

  vestra_test::TemporaryDirectory project;
  VestraHandler handler;
  vestra_test::TimeLimit limit;
};

TEST_F(RulesFile, SimulatorsRulesFileIsWhole) {
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{"usage_statistics_ext_kelvo.wdm"});
}

TEST_F(RulesFile, RulesFileOfTheAlternativeSimulatorIsTheSimulators) {
  handler.setProductType(Vestra::KELVO_ALT);
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

TEST_F(RulesFile, LabToolsRulesFileIsWhole) {
  handler.setProductType(Vestra::TAVLO);
  handler.createSimWdm();
  EXPECT_EQ(readFile(labToolFile()), LAB_TOOL_RULES);
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{"usage_statistics_ext_tavlo.wdm"});
}

TEST_F(RulesFile, RulesFileOfAnyOtherProductIsTheLabTools) {
  handler.setProductType(static_cast<Vestra::ProductType>(7));
  handler.createSimWdm();
  EXPECT_EQ(readFile(labToolFile()), LAB_TOOL_RULES);
}

TEST_F(RulesFile, RulesFileHasThirtyEightLinesAndEndsInAnEmptyOne) {
  handler.createSimWdm();
  const std::string text = readFile(simulatorFile());
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 38);
  EXPECT_EQ(text.substr(text.size() - 4), ");\n\n");
}

TEST_F(RulesFile, RulesFileDoesNotDependOnTheItems) {
  for (unsigned int section = 0; section < 6; ++section) {
    handler.addData("k", "v", static_cast<Vestra::SectionType>(section));
  }
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

TEST_F(RulesFile, RulesFileIsReplacedAndNotAppendedTo) {
  writeFile(simulatorFile(), std::string(10000, 'x'));
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

TEST_F(RulesFile, RulesFileKeepsItsBytesUnderTheHostsLocale) {
  const vestra_test::ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

/// One client's rules, each as "context > xml_map, html_map, html_format".
std::vector<std::string> rulesOf(const libconfig::Setting& client) {
  std::vector<std::string> rules;
  for (const libconfig::Setting& rule : client["rules"]) {
    EXPECT_EQ(rule.getLength(), 4);
    rules.push_back(std::string(rule["context"].c_str()) + " > " + rule["xml_map"].c_str() + ", " +
                    rule["html_map"].c_str() + ", " + rule["html_format"].c_str());
  }
  return rules;
}

/// What a parser of the format makes of the file.
void expectRules(const std::string& file, const std::string& product) {
  libconfig::Config config;
  config.readFile(file.c_str());
  EXPECT_EQ(std::string(config.lookup("version").c_str()), "1.0");
  const libconfig::Setting& clients = config.lookup("clients");
  ASSERT_EQ(clients.getLength(), 2);
  EXPECT_EQ(std::string(clients[0]["client_name"].c_str()), "project");
  EXPECT_EQ(
      rulesOf(clients[0]),
      (std::vector<std::string>{"software_version_and_target_device > software_version_and_target_device, "
                                "software_version_and_target_device, UserEnvStyle",
                                "user_environment > user_environment, user_environment, UserEnvStyle"}));
  EXPECT_EQ(std::string(clients[1]["client_name"].c_str()), product);
  const std::string options = product + "\\command_line_options";
  const std::string usage = product + "\\usage";
  EXPECT_EQ(rulesOf(clients[1]),
            (std::vector<std::string>{options + " > " + options + ", " + options + ", FennoxStatsStyle",
                                      usage + " > " + usage + ", " + usage + ", FennoxStatsStyle"}));
}

TEST_F(RulesFile, RulesFileOfTheSimulatorIsReadBackByItsParser) {
  handler.createSimWdm();
  expectRules(simulatorFile(), "kelvo");
}

TEST_F(RulesFile, RulesFileOfTheLabToolIsReadBackByItsParser) {
  handler.setProductType(Vestra::TAVLO);
  handler.createSimWdm();
  expectRules(labToolFile(), "tavlo");
}

TEST_F(RulesFile, BlocksOfSingleContextsJoinedByAHostAreReadBackToo) {
  const std::string first = VestraParentData("a\\\\b", "p", true).getWdmString();
  const std::string second = VestraParentData("c", "p", false).getWdmString();
  libconfig::Config config;
  config.readString("rules = (\n" + first + ",\n" + second + "\n);\n");
  EXPECT_EQ(rulesOf(config.getRoot()),
            (std::vector<std::string>{"a\\b > a\\b, a\\b, UserEnvStyle", "c > c, c, FennoxStatsStyle"}));
}

TEST_F(RulesFile, RulesFileIsNotMadeInAMissingDirectory) {
  rmdir((project / "vestra").c_str());
  handler.createSimWdm();
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

TEST_F(RulesFile, RulesFileIsNotMadeInAReadOnlyDirectory) {
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] {
              handler.createSimWdm();
              return "came back";
            }),
            "came back");
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});
}

TEST_F(RulesFile, RulesFileThatIsReadOnlyStaysAsItWas) {
  writeFile(simulatorFile(), "old");
  const ScopedMode readOnly(simulatorFile(), 0444);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] {
              handler.createSimWdm();
              return "came back";
            }),
            "came back");
  EXPECT_EQ(readFile(simulatorFile()), "old");
}

TEST_F(RulesFile, RulesFileThatCannotBeReadIsWritten) {
  writeFile(simulatorFile(), "old");
  {
    const ScopedMode writeOnly(simulatorFile(), 0222);
    EXPECT_EQ(vestra_test::asOrdinaryUser([&] {
                handler.createSimWdm();
                return "came back";
              }),
              "came back");
  }
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

TEST_F(RulesFile, DirectoryInItsPlaceIsLeftAlone) {
  makeDirectory(simulatorFile());
  handler.createSimWdm();
  EXPECT_EQ(namesIn(simulatorFile()), std::vector<std::string>{});
}

TEST_F(RulesFile, NamedPipeInItsPlaceIsNotWaitedFor) {
  makeNamedPipe(simulatorFile());
  handler.createSimWdm();
  EXPECT_TRUE(exists(simulatorFile()));
}

TEST_F(RulesFile, SocketInItsPlaceIsLeftAlone) {
  makeSocket(simulatorFile());
  handler.createSimWdm();
  EXPECT_TRUE(exists(simulatorFile()));
}

TEST_F(RulesFile, LinkToItselfIsLeftAlone) {
  makeLink(simulatorFile(), "usage_statistics_ext_kelvo.wdm");
  handler.createSimWdm();
  EXPECT_TRUE(exists(simulatorFile()));
}

TEST_F(RulesFile, LinkToNowhereIsFilled) {
  makeLink(simulatorFile(), project / "elsewhere");
  handler.createSimWdm();
  EXPECT_EQ(readFile(project / "elsewhere"), SIMULATOR_RULES);
}

TEST_F(RulesFile, DevicesSwallowIt) {
  for (const char* device : {"/dev/null", "/dev/zero", "/dev/full"}) {
    makeLink(simulatorFile(), device);
    handler.createSimWdm();
    unlink(simulatorFile().c_str());
    EXPECT_TRUE(exists(device));
  }
}

}  // namespace
}  // namespace Oza
