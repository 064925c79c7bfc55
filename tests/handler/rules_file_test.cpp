#include <boost/algorithm/string/replace.hpp>

#include "handler/rules_file.h"
#include "handler/vestra_handler.h"
#include "support/test.h"

namespace Oza {
namespace {

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

class RulesFile : public Test {
 protected:
  RulesFile() { handler.setProjectDirectory(project.path()); }

  TemporaryDirectory project;
  VestraHandler handler;
};

TEST_F(RulesFile, IsWrittenUnderItsProductsNameWhateverTheHostsLocale) {
  const std::string simulatorFile = project / "vestra/usage_statistics_ext_kelvo.wdm";
  const std::string labToolFile = project / "vestra/usage_statistics_ext_tavlo.wdm";
  writeFile(simulatorFile, std::string(10000, 'x'));
  handler.addData("k", "v", Vestra::KELVO_USAGE);
  const ScopedLocale swapping(caseSwappingFilesLocale());
  for (int times = 0; times < 2; ++times) {
    handler.setProductType(Vestra::KELVO);
    handler.createSimWdm();
    EXPECT_EQ(readFile(simulatorFile), SIMULATOR_RULES);
    handler.setProductType(Vestra::TAVLO);
    handler.createSimWdm();
    EXPECT_EQ(readFile(labToolFile), labToolRules());
  }
  EXPECT_THAT(namesIn(project / "vestra"),
              ElementsAre("usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_tavlo.wdm"));
}

TEST_F(RulesFile, IsNotMadeInAMissingDirectory) {
  handler.createSimWdm();
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

}  // namespace
}  // namespace Oza
