#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "handler/recording_interpreter.h"
#include "handler/report_fixture.h"
#include "support/zlib_crc32.h"

namespace Oza {
namespace {

using vestra_test::commandsOf;
using vestra_test::ScriptCommand;
using vestra_test::zlibCrc32Text;

std::vector<ScriptCommand> commandsOfItem(const std::string& key, const std::string& value) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  return commandsOf(VestraAddData(key, value, &context).toTclString());
}

ScriptCommand addData(const std::string& key, const std::string& value) {
  return {"vestra_add_data", "-client", "kelvo", "-key", key, "-value", value, "-context", "kelvo\\usage"};
}

TEST(ItemInTcl, WithAHazardBreaksTheScript) {
  for (const char* value : {"a\"b", "$undefined", "[undefined]", "[exec ls]"}) {
    EXPECT_THROW(commandsOfItem("k", value), std::runtime_error) << value;
    EXPECT_THROW(commandsOfItem(std::string("[") + value, "v"), std::runtime_error) << value;
  }
}

// Items without hazards: what the interpreter does not read as anything else.

bool isHarmlessInAValue(char byte) { return std::string("\"$[\\").find(byte) == std::string::npos; }

bool isHarmlessInAKey(char byte) {
  return static_cast<unsigned char>(byte) > ' ' && std::string("\"$[\\;{}").find(byte) == std::string::npos;
}

rc::Gen<std::string> harmlessValue() {
  return rc::gen::container<std::string>(rc::gen::suchThat(rc::gen::arbitrary<char>(), isHarmlessInAValue));
}

rc::Gen<std::string> harmlessKey() {
  return rc::gen::nonEmpty(
      rc::gen::container<std::string>(rc::gen::suchThat(rc::gen::arbitrary<char>(), isHarmlessInAKey)));
}

RC_GTEST_PROP(ItemInTcl, WithoutHazardsComesOutAsItWentIn, ()) {
  const std::string key = *harmlessKey();
  const std::string value = *harmlessValue();
  RC_ASSERT(commandsOfItem(key, value) == std::vector<ScriptCommand>{addData(key, value)});
}

/// A handler with a report; one of its own for each try of a property.
class Report : public vestra_test::ReportFixture {
 public:
  void TestBody() override {}

  using ReportFixture::add;
  using ReportFixture::project;

  std::vector<ScriptCommand> commands() { return commandsOf(preparedScript()); }
};

std::string argument(const ScriptCommand& command, const std::string& name) {
  for (std::size_t i = 1; i + 1 < command.size(); ++i) {
    if (command[i] == name) {
      return command[i + 1];
    }
  }
  throw std::runtime_error(command[0] + " without " + name);
}

/// The checksum text as a reader of the script puts it together.
std::string checksumTextOf(const std::vector<ScriptCommand>& commands, const std::string& timeStamp) {
  std::string text = timeStamp;
  for (const ScriptCommand& command : commands) {
    if (command[0] == "vestra_register_client") {
      text += argument(command, "-client");
    } else if (command[0] == "vestra_add_data") {
      text += argument(command, "-key") + argument(command, "-value") + argument(command, "-client") +
              argument(command, "-context");
    }
  }
  return text;
}

using Items = std::vector<std::pair<std::string, std::string>>;

Items itemsOf(const std::vector<ScriptCommand>& commands, const std::string& context) {
  Items items;
  for (const ScriptCommand& command : commands) {
    if (command[0] == "vestra_add_data" && argument(command, "-context") == context) {
      items.emplace_back(argument(command, "-key"), argument(command, "-value"));
    }
  }
  return items;
}

RC_GTEST_PROP(ReportInTcl, HoldsTheItemsAsTheyWentInAndTheirChecksum, ()) {
  const Items options = *rc::gen::container<Items>(rc::gen::pair(harmlessKey(), harmlessValue()));
  const Items usage =
      *rc::gen::nonEmpty(rc::gen::container<Items>(rc::gen::pair(harmlessKey(), harmlessValue())));
  Report report;
  for (const auto& [key, value] : options) {
    report.add(key, value, Vestra::KELVO_COMMAND_LINE_OPTIONS);
  }
  for (const auto& [key, value] : usage) {
    report.add(key, value, Vestra::KELVO_USAGE);
  }
  const std::vector<ScriptCommand> commands = report.commands();
  RC_ASSERT(itemsOf(commands, "kelvo\\command_line_options") == options);
  RC_ASSERT(itemsOf(commands, "kelvo\\usage") == usage);
  const std::string text = checksumTextOf(commands, "318202322");
  RC_ASSERT(argument(commands[commands.size() - 2], "-clientid") ==
            zlibCrc32Text(text.substr(0, text.find('\0'))));
}

}  // namespace
}  // namespace Oza
