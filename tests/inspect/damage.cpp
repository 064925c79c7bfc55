#include "inspect/damage.h"

#include <sys/stat.h>

#include <ctime>

#include "support/special_files.h"

namespace vestra_test {
namespace {

using Make = std::function<void(Place&)>;

Make settings(const std::string& text) {
  return [text](Place& place) { place.write(place.settings(), text); };
}

Make identity(const std::string& text) {
  return [text](Place& place) { place.write(place.identity(), text); };
}

Make withMode(const Make& make, std::string (Place::*file)() const, mode_t mode) {
  return [=](Place& place) {
    make(place);
    chmod((place.*file)().c_str(), mode);
  };
}

std::string past() { return std::to_string(std::time(nullptr) - 100000); }

/// A report that was not due, so that its script stays.
void reportLater(Place& place, const Words& items, const std::string& product = "KELVO") {
  place.writeIdentity(std::time(nullptr));
  place.runHost(product, items);
}

Make item(const std::string& key, const std::string& value) {
  return [=](Place& place) { reportLater(place, {key, value}); };
}

const std::string NOT_A_NUMBER = "a line among 1 to 4 not a number: `abc`, a lone carriage return, a NUL";
const std::string TOO_LARGE = "a number too large: line 4 above 2147483647, others above 9223372036854775807";
const std::string NEAR_MISS = "`RandomID = abc`, `randomid=abc`, a byte-order mark in front";
const std::string CUT_EARLY = "cut after line 1 or 2";
const std::string CUT_LATE = "cut after line 3 or 4";

std::vector<Damage> settingsDamages() {
  const std::string id = "RandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";
  return {
      {"SettingsMissing", "missing, its directories too", "settings.missing", [](Place&) {}},
      {"SettingsEmpty", "empty, or without a `RandomID` pair", "settings.none", settings("")},
      {"SettingsWithoutIdentifier", "empty, or without a `RandomID` pair", "settings.none",
       settings("a=b\n")},
      {"IdentifierWithoutLineEnd", "`RandomID=abc`, no line end", "settings.id_form",
       settings("RandomID=abc")},
      {"IdentifierCutShort", "an identifier cut short, such as `RandomID=3f2a`", "settings.id_form",
       settings("RandomID=3f2a\n")},
      {"IdentifierEmptyWithoutLineEnd", "`RandomID=`, no line end", "settings.no_newline",
       settings("RandomID=")},
      {"IdentifierEmptyFirst", "`RandomID=` with a line end, ahead of any other `RandomID` line",
       "settings.empty_first", settings("RandomID=\n" + id)},
      {"SettingsLineCut", "last line cut before its `=`, such as `Rand`", "settings.no_newline",
       settings("Rand")},
      {"SettingsLineOpen", "last line `a=b`, no line end", "settings.no_newline", settings("a=b")},
      {"IdentifierWithTwoEquals", "`RandomID=a=b`", "settings.near_miss", settings("RandomID=a=b\n")},
      {"IdentifierWithBlanks", NEAR_MISS, "settings.near_miss", settings("RandomID = abc\n")},
      {"IdentifierInLowerCase", NEAR_MISS, "settings.near_miss", settings("randomid=abc\n")},
      {"IdentifierBehindByteOrderMark", NEAR_MISS, "settings.near_miss",
       settings("\xEF\xBB\xBFRandomID=abc\n")},
      {"TwoIdentifiers", "two `RandomID` pairs", "settings.several", settings(id + "RandomID=abc\n")},
      {"SettingsWithCarriageReturns", "carriage returns at the line ends", "settings.carriage_return",
       settings("RandomID=abc\r\n")},
      {"IdentifierWithNul", "a NUL in the identifier", "settings.id_nul",
       settings(std::string("RandomID=ab\0cd\n", 15))},
      {"SettingsUnreadable", "unreadable, but open for appending", "settings.unreadable",
       withMode(settings(id), &Place::settings, 0200)},
      {"SettingsReadOnly", "readable, but not writable", "settings.readonly",
       withMode(settings(id), &Place::settings, 0400)},
      {"SettingsReadOnlyWithoutIdentifier", "readable, but not writable", "settings.unwritable",
       withMode(settings("a=b\n"), &Place::settings, 0400)},
      {"HomeReadOnly", "directory cannot be made, or is not writable and the file is missing",
       "settings.unwritable", [](Place& place) { chmod(place.home().c_str(), 0500); }},
      {"SettingsDirectory", "a directory, or a named pipe, in its place", "settings.special",
       [](Place& place) { makeDirectory(place.settings()); }},
      {"SettingsPipe", "a directory, or a named pipe, in its place", "settings.special",
       [](Place& place) { makeNamedPipe(place.settings()); }},
  };
}

std::vector<Damage> numberDamages() {
  return {
      {"IdentityLine1Word", NOT_A_NUMBER, "identity.number", identity("abc\n0\n5\n0\nid\n")},
      {"IdentityLine2CarriageReturn", NOT_A_NUMBER, "identity.number", identity("0\n\r\n5\n0\nid\n")},
      {"IdentityLine3Nul", NOT_A_NUMBER, "identity.number", identity(std::string("0\n0\n\0\n0\nid\n", 11))},
      {"IdentityLine4Word", NOT_A_NUMBER, "identity.number", identity("0\n0\n5\n-\nid\n")},
      {"IdentityLine4TooLarge", TOO_LARGE, "identity.range", identity("0\n0\n5\n3000000000\nid\n")},
      {"IdentityLine1TooLarge", TOO_LARGE, "identity.range", identity("9223372036854775808\n0\n5\n0\nid\n")},
      {"IdentityTextBehindNumber", "text behind a number: `12x`, `1,000`, `0x10`", "identity.trailing",
       identity("12x\n1,000\n0x10\n0\nid\n")},
      {"IdentityInFuture", "a time in the future", "due.future", identity("32503680000\n0\n5\n0\nid\n")},
      {"IdentityBeforeEpoch", "a negative time", "due.negative", identity("-5\n0\n5\n0\nid\n")},
      {"IterationMinusOne", "iteration -1", "identity.negative", identity("0\n0\n-1\n0\nid\n")},
      {"IterationMinusTwo", "iteration -2, or 9223372036854775807", "identity.overflow",
       identity("0\n0\n-2\n0\nid\n")},
      {"IterationAtItsEnd", "iteration -2, or 9223372036854775807", "identity.overflow",
       identity("0\n0\n9223372036854775807\n0\nid\n")},
      {"OrbeloFlowSeven", "orbelo flow neither 0 nor 1", "identity.flow", identity("0\n0\n5\n7\nid\n")},
      {"IdentityBlankLine", "a line among 1 to 4 empty", "identity.blank_line", identity("\n0\n\n0\nid\n")},
  };
}

std::vector<Damage> identityDamages() {
  const std::string two = "written by two hosts at once";
  return {
      {"IdentityMissing", "missing", "identity.missing",
       [](Place& place) { makeDirectory(place.inVestra("")); }},
      {"VestraDirectoryMissing", "`D/vestra` missing, or `D` too", "send.none", [](Place&) {}},
      {"IdentityEmpty", "empty", "identity.empty", identity("")},
      {"IdentityCutAfterLine1", CUT_EARLY, "identity.cut", identity(past() + "\n")},
      {"IdentityCutAfterLine2", CUT_EARLY, "identity.cut", identity(past() + "\n0\n")},
      {"IdentityCutAfterLine3", CUT_LATE, "identity.cut", identity(past() + "\n0\n5\n")},
      {"IdentityCutAfterLine4", CUT_LATE, "identity.cut", identity(past() + "\n0\n5\n0\n")},
      {"IdentityWithoutLineEnd", "line 5 without its line end", "identity.no_line_end",
       identity("0\n0\n5\n0\nid")},
      {"ProjectIdWithCarriageReturn", "carriage return at the end of line 5", "identity.id_cr",
       identity("0\n0\n5\n0\nid\r\n")},
      {"ProjectIdWithNul", "a NUL in line 5", "identity.id_nul",
       identity(std::string("0\n0\n5\n0\ni\0d\n", 12))},
      {"IdentityOfSevenLines", "more than five lines", "identity.more_lines",
       identity("0\n0\n5\n0\nid\nx\ny\n")},
      {"IdentityReadOnly", "readable, but not writable", "identity.unwritable",
       withMode(identity("0\n0\n5\n0\nid\n"), &Place::identity, 0400)},
      {"IdentityUnreadable", "writable, but not readable", "identity.unreadable",
       withMode(identity("0\n0\n5\n0\nid\n"), &Place::identity, 0200)},
      {"VestraDirectoryReadOnly", "missing, and `D/vestra` not writable or impossible to make",
       "project.unwritable",
       [](Place& place) {
         makeDirectory(place.inVestra(""));
         chmod(place.inVestra("").c_str(), 0500);
       }},
      {"VestraDirectoryImpossible", "missing, and `D/vestra` not writable or impossible to make",
       "project.vestra_is_file", [](Place& place) { place.write(place.project() + "/vestra", ""); }},
      {"IdentityDirectory", "a directory or a named pipe in its place", "identity.special",
       [](Place& place) { makeDirectory(place.identity()); }},
      {"IdentityPipe", "a directory or a named pipe in its place", "identity.special",
       [](Place& place) { makeNamedPipe(place.identity()); }},
      {"IdentityDanglingLink", "a link that leads nowhere", "identity.link",
       [](Place& place) { makeLink(place.identity(), place.project() + "/elsewhere"); }},
      {"IdentityReadError", "a read error", "identity.read_error",
       [](Place& place) { makeLink(place.identity(), "/proc/self/mem"); }},
      {"IdentityLinesRunTogether", two, "identity.merged",
       identity("17953010451795301045\n0\n5\n0\n7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d\n")},
      {"ProjectIdsRunTogether", two, "identity.merged",
       identity("0\n0\n5\n0\n7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d\n")},
  };
}

std::vector<Damage> reportDamages() {
  const std::string value = "a double quote, `$`, `[`, `]` or backslash in a value";
  const std::string key = "white space, `;` or an empty key";
  const std::string stuck =
      "after the run, it cannot be removed (directory not writable, a non-empty directory in "
      "its place)";
  const std::string log = "cannot be deleted (directory not writable, a non-empty directory in its place)";
  return {
      {"ValueWithDollar", value, "report.hazard", item("top", "$fast")},
      {"ValueWithQuote", value, "report.hazard", item("top", "a\"b")},
      {"KeyWithBlank", key, "report.hazard", item("user script", "run.tcl")},
      {"KeyEmpty", key, "report.hazard", item("", "x")},
      {"ValueWithLineFeed", "a line feed in a value", "report.line_feed", item("text", "one\ntwo")},
      {"ScriptPlaceTaken", "the file cannot be written (a directory in its place, no permission, full disk)",
       "tool.script_place", [](Place& place) { makeDirectory(place.inVestra("kelvo_vestra.tcl")); }},
      {"ScriptStays", "a file stays from an earlier run", "due.later", item("runs", "2")},
      {"ScriptLocked", stuck, "project.script_locked",
       [](Place& place) {
         place.writeIdentity(0);
         place.write(place.inVestra("kelvo_vestra.tcl"), "old");
         chmod(place.inVestra("").c_str(), 0500);
       }},
      {"ScriptPlaceTakenByFullDirectory", stuck, "tool.script_place",
       [](Place& place) { place.write(place.inVestra("kelvo_vestra.tcl/x"), ""); }},
      {"LogMissing", "missing", "tool.log_missing", [](Place& place) { place.writeIdentity(0); }, "TAVLO"},
      {"LogCannotBeDeleted", log, "tool.log",
       [](Place& place) { place.write(place.inVestra("tavlo_vestra.log/x"), ""); }, "TAVLO"},
      {"LogCannotBeMade", "cannot be made by the shell", "project.script_locked",
       [](Place& place) {
         place.writeIdentity(0);
         place.write(place.inVestra("tavlo_vestra.tcl"), "");
         place.write(place.inVestra("usage_statistics_ext_tavlo.wdm"), "");
         chmod(place.inVestra("").c_str(), 0500);
       },
       "TAVLO"},
  };
}

std::vector<Damage> allDamages() {
  std::vector<Damage> all;
  for (const auto& some : {settingsDamages(), numberDamages(), identityDamages(), reportDamages()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Damage& damage) { return out << damage.name; }

const std::vector<Damage>& damages() {
  static const std::vector<Damage> all = allDamages();
  return all;
}

}  // namespace vestra_test
