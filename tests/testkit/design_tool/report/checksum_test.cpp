#include "design_tool/report/checksum.h"

#include <gtest/gtest.h>

#include <ctime>

#include "data/crc32.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

constexpr std::time_t NOON = 1'795'262'400;
constexpr std::time_t HOUR = 3600;

std::uint32_t checksumAtNoon(const std::string& digested) {
  struct tm local = {};
  char text[16];
  ::localtime_r(&NOON, &local);
  return Oza::crc32(
      (std::string(text, std::strftime(text, sizeof text, "%j%Y%H", &local)) + digested).c_str());
}

/// A script whose number is the checksum of `digested`, written at NOON.
std::string scriptWith(const std::string& lines, const std::string& digested) {
  std::string script = scriptAround(lines);
  return script.replace(script.find("-clientid 1"), 11,
                        "-clientid " + std::to_string(checksumAtNoon(digested)));
}

std::string warningsOf(const std::string& script, std::time_t written = NOON) {
  std::string text;
  for (const Warning& warning : checksumWarnings(evaluateScript("s.tcl", script), script, written)) {
    text += std::to_string(warning.line) + ": " + warning.message + "\n";
  }
  return text;
}

const std::string USAGE_CONTEXT = "kelvo\\\\usage";
const std::string TWO = addData("kelvo", "a", "1", USAGE_CONTEXT) + addData("kelvo", "b", "2", USAGE_CONTEXT);
const std::string TWO_DIGESTED = "kelvoa1kelvokelvo\\usageb2kelvokelvo\\usage";

TEST(Checksum, AgreesWithinADayOfItsHour) {
  const std::string script = scriptWith(TWO, TWO_DIGESTED);
  for (const int hours : {0, 1, -1, 24, -24}) {
    EXPECT_EQ(warningsOf(script, NOON + hours * HOUR), "") << hours;
  }
  for (const int hours : {25, -25, 24 * 365}) {
    EXPECT_NE(warningsOf(script, NOON + hours * HOUR), "") << hours;
  }
}

TEST(Checksum, AgreesWithTheTextThatWasWrittenOrTheOneThatWasRead) {
  const std::pair<std::string, std::string> rows[] = {
      // The interpreter reads a tab.
      {addData("kelvo", "a", "C:\\temp", USAGE_CONTEXT), "kelvoaC:\\tempkelvokelvo\\usage"},
      // The library does not write such lines.
      {"foreach k {a b} {vestra_add_data -value 1 -client kelvo -key $k -context c}\n",
       "kelvoa1kelvocb1kelvoc"},
      // The library's checksum ends at a NUL.
      {addData("kelvo", "a", std::string("x\0y", 3), USAGE_CONTEXT), "kelvoax"},
  };
  for (const auto& [lines, digested] : rows) {
    EXPECT_EQ(warningsOf(scriptWith(lines, digested)), "");
  }
}

TEST(Checksum, OfAChangedReportIsNamed) {
  const std::uint32_t given = checksumAtNoon(TWO_DIGESTED);
  const std::uint32_t expected = checksumAtNoon("kelvoa1kelvokelvo\\usageb3kelvokelvo\\usage");
  std::string script = scriptWith(TWO, TWO_DIGESTED);
  script.replace(script.find("\"2\""), 3, "\"3\"");
  const std::string warnings = warningsOf(script);
  EXPECT_EQ(warnings.substr(0, warnings.rfind(" is expected")),
            "5: -clientid " + std::to_string(given) +
                " is not the checksum of what is reported: " + std::to_string(expected));
}

/// A value that ends its own command and adds two items.
std::string injection(const std::string& separator) {
  const std::string end = "\" -context \"kelvo\\\\usage\"" + separator;
  return "v" + end + "vestra_add_data -client kelvo -key x -value \"w" + end +
         "vestra_add_data -client kelvo -key y -value \"w";
}

TEST(Checksum, ShowsThatAValueHasAddedItems) {
  const auto warningsAfter = [](const std::string& value) {
    return warningsOf(scriptWith(TWO + addData("kelvo", "k", value, USAGE_CONTEXT),
                                 TWO_DIGESTED + "k" + value + "kelvokelvo\\usage"));
  };
  EXPECT_EQ(warningsAfter(injection("; ")), "5: the value of key \"k\" ends its command and adds 2 more\n");
  EXPECT_NE(warningsAfter(injection("\n")).find(" is not the checksum of what is reported: "),
            std::string::npos);
}

}  // namespace
}  // namespace vestra::design_tool
