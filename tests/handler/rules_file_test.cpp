#include <gtest/gtest.h>

#include <libconfig.h++>

#include <string>
#include <vector>

#include <boost/algorithm/string/replace.hpp>

#include "handler/rules_file.h"
#include "handler/vestra_handler.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using vestra_test::makeDirectory;
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

std::string labToolRules() { return boost::algorithm::replace_all_copy(SIMULATOR_RULES, "kelvo", "tavlo"); }

TEST(RulesFileText, IsThatOfTheProduct) {
  EXPECT_EQ(rulesFileText(Vestra::KELVO), SIMULATOR_RULES);
  EXPECT_EQ(rulesFileText(Vestra::KELVO_ALT), SIMULATOR_RULES);
  EXPECT_EQ(rulesFileText(Vestra::TAVLO), labToolRules());
  EXPECT_EQ(rulesFileText(static_cast<Vestra::ProductType>(7)), labToolRules());
}

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

TEST_F(RulesFile, IsWrittenUnderItsProductsName) {
  handler.addData("k", "v", Vestra::KELVO_USAGE);
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
  handler.setProductType(Vestra::TAVLO);
  handler.createSimWdm();
  EXPECT_EQ(readFile(labToolFile()), labToolRules());
  EXPECT_EQ(namesIn(project / "vestra"),
            (std::vector<std::string>{"usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_tavlo.wdm"}));
}

TEST_F(RulesFile, IsReplacedAndNotAppendedTo) {
  writeFile(simulatorFile(), std::string(10000, 'x'));
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
  handler.createSimWdm();
  EXPECT_EQ(readFile(simulatorFile()), SIMULATOR_RULES);
}

TEST_F(RulesFile, KeepsItsBytesUnderTheHostsLocale) {
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
void expectRules(Vestra::ProductType type, const std::string& product) {
  libconfig::Config config;
  config.readString(rulesFileText(type));
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

TEST(RulesFileText, IsReadBackByItsParser) {
  expectRules(Vestra::KELVO, "kelvo");
  expectRules(Vestra::TAVLO, "tavlo");
}

TEST(RulesBlocks, JoinedByAHostAreReadBackToo) {
  const std::string first = VestraParentData("a\\\\b", "p", true).getWdmString();
  const std::string second = VestraParentData("c", "p", false).getWdmString();
  libconfig::Config config;
  config.readString("rules = (\n" + first + ",\n" + second + "\n);\n");
  EXPECT_EQ(rulesOf(config.getRoot()),
            (std::vector<std::string>{"a\\b > a\\b, a\\b, UserEnvStyle", "c > c, c, FennoxStatsStyle"}));
}

TEST_F(RulesFile, IsNotMadeInAMissingDirectory) {
  rmdir((project / "vestra").c_str());
  handler.createSimWdm();
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

TEST_F(RulesFile, IsNotMadeInAReadOnlyDirectory) {
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] {
              handler.createSimWdm();
              return "came back";
            }),
            "came back");
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{});
}

TEST_F(RulesFile, ThatIsReadOnlyStaysAsItWas) {
  writeFile(simulatorFile(), "old");
  const ScopedMode readOnly(simulatorFile(), 0444);
  // Whatever the umask: who may write the directory replaces another owner's file.
  const ScopedMode ownersOnly(project / "vestra", 0755);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] {
              handler.createSimWdm();
              return "came back";
            }),
            "came back");
  EXPECT_EQ(readFile(simulatorFile()), "old");
}

TEST_F(RulesFile, ThatCannotBeReadIsWritten) {
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

}  // namespace
}  // namespace Oza
