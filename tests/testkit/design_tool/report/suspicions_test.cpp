#include "design_tool/report/suspicions.h"

#include <gtest/gtest.h>

#include <ctime>

#include "data/crc32.h"
#include "testkit/design_tool/golden.h"
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

std::string suspicionsIn(const std::string& script, std::time_t written = NOON) {
  const std::vector<Rule> rules = parseRules("r.wdm", golden("usage_statistics_ext_kelvo.wdm"));
  std::string text;
  for (const Warning& warning : suspicionsAbout(evaluateScript("s.tcl", script), rules, script, written)) {
    text += std::to_string(warning.line) + ": " + warning.message + "\n";
  }
  return text;
}

/// An item in a context that has a rule.
std::string item(const std::string& key, const std::string& value) {
  return addData("kelvo", key, value, "kelvo\\\\usage");
}

std::string digested(const std::string& key, const std::string& value) {
  return key + value + "kelvokelvo\\usage";
}

const std::string TWO = item("a", "1") + item("b", "2");
const std::string TWO_DIGESTED = "kelvo" + digested("a", "1") + digested("b", "2");

TEST(Suspicions, AreNamedAtTheirFirstLine) {
  const std::string one = item("a", "1");
  const std::string registration = "vestra_register_client -client ";
  const std::string end = "\" -context \"kelvo\\\\usage\"; vestra_add_data -client kelvo -key x -value \"";
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {TWO, ""},
      {one + addData("project", "a", "1", "user_environment") +
           addData("project", "b", "1", "user_environment"),
       "4: client \"project\" has data but was never registered\n"},
      {addData("project", "a", "1", "user_environment") + registration + "project\n", ""},
      {addData("kelvo", "a", "1", "tavlo\\\\usage") + addData("kelvo", "b", "1", "tavlo\\\\usage"),
       "3: context \"tavlo\\usage\" of client \"kelvo\" has no rule\n"},
      // A rule is for one client.
      {addData("kelvo", "a", "1", "user_environment"),
       "3: context \"user_environment\" of client \"kelvo\" has no rule\n"},
      {one + one + one + addData("kelvo", "a", "1", "kelvo\\\\command_line_options"),
       "4: key \"a\" occurs again in context \"kelvo\\usage\", first on line 3\n"},
      {item("a", "C:\\temp"), "3: Tcl has changed the value: \"C:\\temp\" became \"C:\\x09emp\"\n"},
      {item("\"a\"", "a\\\\b"),
       "3: Tcl has changed the key: \"\"a\"\" became \"a\"\n"
       "3: Tcl has changed the value: \"a\\\\b\" became \"a\\b\"\n"},
      {one + item("k", "v\n" + end + "w" + end + "w"),
       "4: the value of key \"k\" ends its command and adds 2 more\n"
       "5: key \"x\" occurs again in context \"kelvo\\usage\", first on line 5\n"},
      {one + item("k", "v" + end + "w"), "4: the value of key \"k\" ends its command and adds 1 more\n"},
      // In the order of the lines.
      {addData("project", "a", "1", "user_environment") + item("b", "\\t"),
       "3: client \"project\" has data but was never registered\n"
       "4: Tcl has changed the value: \"\\t\" became \"\\x09\"\n"},
  };
  for (const auto& [lines, suspicions] : rows) {
    const std::string found = suspicionsIn(scriptAround(lines));
    const std::size_t checksum = found.rfind("-clientid 1 is not the checksum");
    EXPECT_EQ(found.substr(0, found.rfind('\n', checksum) + 1), suspicions) << lines;
  }
}

TEST(Suspicions, ExceptAChecksumWithinADayOfItsHour) {
  const std::string script = scriptWith(TWO, TWO_DIGESTED);
  for (const int hours : {0, 1, -1, 24, -24}) {
    EXPECT_EQ(suspicionsIn(script, NOON + hours * HOUR), "") << hours;
  }
  for (const int hours : {25, -25, 24 * 365}) {
    EXPECT_NE(suspicionsIn(script, NOON + hours * HOUR), "") << hours;
  }
  // The library's checksum ends at a NUL.
  EXPECT_EQ(suspicionsIn(scriptWith(item("a", std::string("x\0y", 3)), "kelvoax")), "");
}

TEST(Suspicions, NameTheChecksumOfAChangedReport) {
  const std::uint32_t given = checksumAtNoon(TWO_DIGESTED);
  const std::uint32_t expected = checksumAtNoon("kelvo" + digested("a", "1") + digested("b", "3"));
  std::string script = scriptWith(TWO, TWO_DIGESTED);
  script.replace(script.find("\"2\""), 3, "\"3\"");
  const std::string warnings = suspicionsIn(script);
  EXPECT_EQ(warnings.substr(0, warnings.rfind(" is expected")),
            "5: -clientid " + std::to_string(given) +
                " is not the checksum of what is reported: " + std::to_string(expected));
  // A line that a value adds is not in the library's checksum.
  const std::string added = item("a", "1\" -context \"kelvo\\\\usage\"\n" + item("b", "2").substr(0, 40));
  EXPECT_NE(suspicionsIn(scriptWith(TWO, "kelvo" + digested("a", "1\n" + added))), "");
}

}  // namespace
}  // namespace vestra::design_tool
