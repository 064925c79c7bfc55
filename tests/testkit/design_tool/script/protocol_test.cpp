#include <gtest/gtest.h>

#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

const std::string INIT = "vestra_init -vestra_dir /p/vestra/\n";
const std::string REGISTER = "vestra_register_client -client kelvo\n";
const std::string TRANSMIT = "vestra_transmit -clientid 1 -regid R -xml x -html h -wdm w -intro I\n";
const std::string END = "vestra_terminate\n";

struct Row {
  std::string script;
  std::string error;
};

void expectErrors(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(errorOf(row.script), row.error) << row.script;
  }
}

TEST(Protocol, HasAnOrder) {
  expectErrors({
      {INIT + TRANSMIT + END, "no error"},
      {INIT + TRANSMIT + END + "\n# the end\n", "no error"},
      {REGISTER, "1: vestra_register_client comes before vestra_init"},
      {"\n" + TRANSMIT, "2: vestra_transmit comes before vestra_init"},
      {INIT + INIT, "2: vestra_init is given twice"},
      {INIT + TRANSMIT + INIT, "3: vestra_init is given twice"},
      {INIT + TRANSMIT + TRANSMIT, "3: vestra_transmit is given twice"},
      {INIT + TRANSMIT + REGISTER, "3: vestra_register_client comes after vestra_transmit"},
      {INIT + END, "2: vestra_terminate comes before vestra_transmit"},
      {INIT + TRANSMIT + END + "set a 1\n", "4: nothing may follow vestra_terminate"},
      {INIT + TRANSMIT + "if 1 {vestra_terminate; vestra_init}\n",
       "3: vestra_init comes after vestra_terminate"},
      {"", "1: the script ends without vestra_init"},
      {"\n\n", "1: the script ends without vestra_init"},
      {INIT + "# data\n\n", "1: the script ends without vestra_transmit"},
      {INIT + TRANSMIT, "2: the script ends without vestra_terminate"},
  });
}

TEST(Protocol, TakesEachOptionOnce) {
  expectErrors({
      {scriptAround("vestra_add_data -context c -value v -key k -client kelvo\n"), "no error"},
      {scriptAround(addData("kelvo", "-value", "v", "c")), "no error"},
      {INIT + "vestra_add_data -client kelvo -key runs -val \"2\" -context \"c\"\n",
       "2: vestra_add_data: unknown option \"-val\"; it takes -client, -key, -value, -context"},
      {INIT + "vestra_add_data -client kelvo -key runs -value \"2\"\n",
       "2: vestra_add_data: option -context is missing"},
      {"vestra_init -vestra_dir\n", "1: vestra_init: option -vestra_dir has no value"},
      {"vestra_init -vestra_dir a -vestra_dir b\n", "1: vestra_init: option -vestra_dir is given twice"},
      {INIT + TRANSMIT + "vestra_terminate now\n",
       "3: vestra_terminate: unexpected word \"now\"; it takes none"},
  });
  for (const std::string option : {"-clientid 1", "-regid R", "-xml x", "-html h", "-wdm w", "-intro I"}) {
    std::string transmit = TRANSMIT;
    transmit.erase(transmit.find(option), option.size());
    const std::string name = option.substr(0, option.find(' '));
    expectErrors({{INIT + transmit, "2: vestra_transmit: option " + name + " is missing"}});
  }
}

TEST(Protocol, ExplainsWhatTheLibraryDoesNotQuote) {
  expectErrors({
      {"vestra_init -vestra_dir /home/u/my project/vestra/\n",
       "1: vestra_init: unexpected word \"project/vestra/\"; a path with blanks reaches the script unquoted"},
      {scriptAround(addData("kelvo", "two words", "v", "c")),
       "3: vestra_add_data: unexpected word \"words\"; a key with white space reaches the script unquoted"},
      {scriptAround(addData("kelvo", "", "v", "c")),
       "3: vestra_add_data: unexpected word \"v\"; -key took \"-value\" for its value"},
  });
}

TEST(Protocol, TakesAClientIdOf32Bits) {
  const auto transmitWith = [](const std::string& clientId) {
    return INIT + "vestra_transmit -clientid " + clientId +
           " -regid R -xml x -html h -wdm w -intro I\nvestra_terminate\n";
  };
  expectErrors({{transmitWith("0"), "no error"}, {transmitWith("4294967295"), "no error"}});
  for (const std::string wrong :
       {"12a", "4294967296", "-1", "+1", "007", "1x", "0x10", "1.0", "99999999999999999999", "\"\""}) {
    const std::string quoted = wrong == "\"\"" ? wrong : "\"" + wrong + "\"";
    expectErrors({{transmitWith(wrong), "2: vestra_transmit: -clientid " + quoted +
                                            " is no decimal number from 0 to 4294967295"}});
  }
}

}  // namespace
}  // namespace vestra::design_tool
