#include "design_tool/report/checksum.h"

#include <gtest/gtest.h>

#include "design_tool/report/crc32.h"
#include "design_tool/script/script_evaluation.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

constexpr std::time_t NOON = 1'795'262'400;
constexpr std::time_t HOUR = 3600;

std::string hourOf(std::time_t time) {
  struct tm local = {};
  char text[16];
  ::localtime_r(&time, &local);
  return {text, std::strftime(text, sizeof text, "%j%Y%H", &local)};
}

/// A script whose number is the checksum of `digested`, written at NOON.
std::string scriptWith(const std::string& lines, const std::string& digested) {
  const std::uint32_t number = Crc32().after(hourOf(NOON) + digested).checksum();
  std::string script = scriptAround(lines);
  return script.replace(script.find("-clientid 1"), 11, "-clientid " + std::to_string(number));
}

std::string warningsOf(const std::string& script, std::time_t readAs = NOON) {
  std::string text;
  for (const Warning& warning : checksumWarnings(evaluateScript("s.tcl", script), script, readAs)) {
    text += std::to_string(warning.line) + ": " + warning.message + "\n";
  }
  return text;
}

const std::string USAGE_CONTEXT = "kelvo\\\\usage";
const std::string TWO = addData("kelvo", "a", "1", USAGE_CONTEXT) + addData("kelvo", "b", "2", USAGE_CONTEXT);
const std::string TWO_DIGESTED = "kelvoa1kelvokelvo\\usageb2kelvokelvo\\usage";

TEST(Checksum, AnUnchangedReportAgreesInTheHoursAroundItsTime) {
  const std::string script = scriptWith(TWO, TWO_DIGESTED);
  for (const std::time_t readAs : {NOON, NOON - HOUR, NOON + HOUR}) {
    EXPECT_EQ(warningsOf(script, readAs), "");
  }
}

TEST(Checksum, AReportThatWasKeptAgreesYearsLater) {
  EXPECT_EQ(warningsOf(scriptWith(TWO, TWO_DIGESTED), NOON + 30L * 365 * 24 * HOUR), "");
}

TEST(Checksum, AChangedReportIsToldTheNumberThatIsExpected) {
  const std::uint32_t expected =
      Crc32().after(hourOf(NOON) + "kelvoa1kelvokelvo\\usageb3kelvokelvo\\usage").checksum();
  std::string script = scriptWith(TWO, TWO_DIGESTED);
  const std::uint32_t given = evaluateScript("s.tcl", script).transmission.clientId;
  script.replace(script.find("\"2\""), 3, "\"3\"");
  const std::string warnings = warningsOf(script);
  EXPECT_EQ(warnings.substr(0, warnings.rfind(" is expected")),
            "5: -clientid " + std::to_string(given) +
                " is not the checksum of what is reported: " + std::to_string(expected));
}

TEST(Checksum, AValueThatTheInterpreterChangesStillAgrees) {
  EXPECT_EQ(warningsOf(scriptWith(addData("kelvo", "a", "C:\\temp", USAGE_CONTEXT),
                                  "kelvoaC:\\tempkelvokelvo\\usage")),
            "");
}

TEST(Checksum, AReportOfAnotherFormAgreesAsItIsRead) {
  EXPECT_EQ(
      warningsOf(scriptWith("foreach k {a b} {vestra_add_data -value 1 -client kelvo -key $k -context c}\n",
                            "kelvoa1kelvocb1kelvoc")),
      "");
}

TEST(Checksum, BytesBehindANulAreNotDigested) {
  EXPECT_EQ(warningsOf(scriptWith(addData("kelvo", "a", std::string("x\0y", 3), USAGE_CONTEXT), "kelvoax")),
            "");
}

/// A value that ends its own command and adds items.
std::string injection(const std::string& separator, int items) {
  std::string value = "v";
  for (int i = 0; i < items; ++i) {
    value += "\" -context \"kelvo\\\\usage\"" + separator + "vestra_add_data -client kelvo -key added" +
             std::to_string(i) + " -value \"w";
  }
  return value;
}

TEST(Checksum, ItemsThatAValueAddsOnLinesOfTheirOwnAreFound) {
  for (const int items : {1, 3}) {
    const std::string value = injection("\n", items);
    const std::string script = scriptWith(
        addData("kelvo", "before", "1", USAGE_CONTEXT) + addData("kelvo", "k", value, USAGE_CONTEXT) +
            addData("kelvo", "behind", "1", USAGE_CONTEXT),
        "kelvobefore1kelvokelvo\\usagek" + value + "kelvokelvo\\usagebehind1kelvokelvo\\usage");
    EXPECT_EQ(warningsOf(script),
              "4: the value of key \"k\" has added the next " + std::string(items == 1 ? "item" : "3 items") +
                  ": -clientid is the checksum of a report in which they are part of it\n");
  }
}

TEST(Checksum, ItemsThatAValueAddsOnItsOwnLineAreFound) {
  const std::string value = injection("; ", 2);
  EXPECT_EQ(warningsOf(scriptWith(TWO + addData("kelvo", "k", value, USAGE_CONTEXT),
                                  TWO_DIGESTED + "k" + value + "kelvokelvo\\usage")),
            "5: the value of key \"k\" ends its command and adds 2 more\n");
}

}  // namespace
}  // namespace vestra::design_tool
