#include "inspect/states.h"

#include <sys/stat.h>

#include <ctime>

#include <boost/algorithm/string/replace.hpp>

#include "support/files.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

using Make = std::function<void(Place&)>;

const std::string ID = "3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e";
const std::string PROJECT_ID = "7c1d0a52-6a0e-4b7e-8a55-0f4f6f0f9b0d";

void nothing(Place&) {}

std::string bytes(const char* text, std::size_t length) { return {text, length}; }

Make settings(const std::string& text) {
  return [text](Place& place) { place.write(place.settings(), text); };
}

Make identity(const std::string& text) {
  return [text](Place& place) { place.write(place.identity(), text); };
}

std::string seconds(std::int64_t fromNow) { return std::to_string(std::time(nullptr) + fromNow); }

/// Both products have a report that was not due, so that its files are there.
void leaveReports(Place& place) {
  place.writeIdentity(std::time(nullptr));
  place.runHost("KELVO", {"runs", "2"});
  place.runHost("TAVLO", {"probes", "4"});
}

Make reportLater(const Words& items) {
  return [=](Place& place) {
    place.writeIdentity(std::time(nullptr));
    place.runHost("KELVO", items);
  };
}

Make script(const std::function<std::string(std::string)>& change) {
  return [=](Place& place) {
    leaveReports(place);
    const std::string path = place.inVestra("kelvo_vestra.tcl");
    place.write(path, change(readFile(path)));
  };
}

Make variable(const std::string& name, const std::string& value) {
  return [=](Place& place) { place.setVariable(name, value); };
}

Make then(const Make& first, const Make& second) {
  return [=](Place& place) {
    first(place);
    second(place);
  };
}

/// What is ahead of the support library on the loader's path.
Make ahead(const std::function<void(Place&, const std::string&)>& make) {
  return [=](Place& place) {
    make(place, place.elsewhere() + "/" + LIBRARY_NAME);
    place.setVariable("LD_LIBRARY_PATH", place.elsewhere() + ":" + place.support());
  };
}

Make altered(const std::function<void(std::string&)>& change) {
  return ahead([=](Place& place, const std::string& path) {
    std::string library = readFile(place.support() + "/" + LIBRARY_NAME);
    change(library);
    place.write(path, library);
  });
}

Make inDirectory(const std::string& name) {
  return [=](Place& place) { place.moveProject(place.elsewhere() + "/" + name); };
}

const std::string NOT_A_NUMBER = "a line among 1 to 4 not a number: `abc`, a lone carriage return, a NUL";
const std::string TOO_LARGE = "a number too large: line 4 above 2147483647, others above 9223372036854775807";
const std::string NEAR_MISS = "`RandomID = abc`, `randomid=abc`, a byte-order mark in front";
const std::string TWO_HOSTS = "written by two hosts at once";

}  // namespace

std::vector<State> settingsStates() {
  const std::string line = "RandomID=" + ID + "\n";
  const auto state = [](const char* name, const std::string& text, const char* finding,
                        const std::string& row = "", const Words& secrets = {}) {
    return State{name, settings(text), finding, "KELVO", secrets, row};
  };
  return {
      {"SettingsMissing", nothing, "", "KELVO", {}, "missing, its directories too"},
      state("SettingsEmpty", "", "", "empty, or without a `RandomID` pair"),
      state("SettingsOfOthers", "a=b\n", ""),
      state("SettingsOfComments", "# a comment\n\n\n", ""),
      state("Identifier", line, "", "", {ID}),
      state("IdentifierBehindOthers", "a=b\nc\n" + line, "", "", {ID}),
      state("IdentifierWithoutLineEnd", "RandomID=abc", "", "`RandomID=abc`, no line end"),
      state("IdentifierCutShort", "RandomID=3f2a-secret\n", "",
            "an identifier cut short, such as `RandomID=3f2a`", {"3f2a-secret"}),
      state("IdentifierEmptyWithoutLineEnd", "RandomID=", "settings.no_newline", "`RandomID=`, no line end"),
      state("IdentifierEmptyFirst", "RandomID=\n" + line, "settings.empty_first",
            "`RandomID=` with a line end, ahead of any other `RandomID` line", {ID}),
      state("IdentifierEmptyAlone", "RandomID=\n", "settings.empty_first"),
      state("SettingsLineCut", "Rand", "settings.no_newline", "last line cut before its `=`, such as `Rand`"),
      state("SettingsLineOpen", "a=b", "settings.no_newline", "last line `a=b`, no line end"),
      state("IdentifierWithTwoEquals", "RandomID=" + ID + "=b\n", "", "`RandomID=a=b`", {ID}),
      state("IdentifierWithBlanks", "RandomID = " + ID + "\n", "", NEAR_MISS, {ID}),
      state("IdentifierInLowerCase", "randomid=" + ID + "\n", "", NEAR_MISS, {ID}),
      state("IdentifierBehindByteOrderMark", "\xEF\xBB\xBF" + line, "", NEAR_MISS, {ID}),
      state("TwoIdentifiers", line + "RandomID=another-secret\n", "", "two `RandomID` pairs",
            {ID, "another-secret"}),
      state("SettingsWithCarriageReturns", "RandomID=abcdef\r\n", "", "carriage returns at the line ends",
            {"abcdef"}),
      state("IdentifierWithNul", bytes("RandomID=ab\0secret\n", 19), "settings.id_nul",
            "a NUL in the identifier", {"secret"}),
      state("IdentifierAsScript", "RandomID=$secret\n", "settings.id_script", "", {"secret"}),
      state("IdentifierInBrackets", "RandomID=[exec secret]\n", "settings.id_script", "", {"secret"}),
      state("IdentifierWithQuote", "RandomID=a\"secret\n", "settings.id_script", "", {"secret"}),
      state("IdentifierBehindBlanks", "   RandomID=" + ID + "  \n", "", "", {ID}),
      state("IdentifierOfControlBytes", "RandomID=\033[2Jsecret\n", "settings.id_script", "", {"secret"}),
      state("IdentifierNotUtf8", "RandomID=secret\xFF\n", "", "", {"secret"}),
      state("IdentifierOfManyBytes", "RandomID=" + std::string(3000, 'x') + "\n", ""),
      state("SettingsOfManyLines",
            [] {
              std::string text;
              for (int i = 0; i < 5000; ++i) {
                text += "key" + std::to_string(i) + "=value\n";
              }
              return text;
            }() +
                line,
            "", "", {ID}),
      state("SettingsOfNuls", std::string(100, '\0') + "\n", ""),
  };
}

std::vector<State> identityStates() {
  const auto state = [](const char* name, const std::string& text, const char* finding,
                        const std::string& row = "", const Words& secrets = {}) {
    return State{name, identity(text), finding, "KELVO", secrets, row};
  };
  const std::string whole = "0\n0\n5\n0\n" + PROJECT_ID + "\n";
  std::vector<State> states = {
      {"IdentityMissing",
       [](Place& place) { makeDirectory(place.inVestra("")); },
       "",
       "KELVO",
       {},
       "missing"},
      {"VestraDirectoryMissing", nothing, "send.none", "KELVO", {}, "`D/vestra` missing, or `D` too"},
      {"ProjectMissing", [](Place& place) { place.moveProject(place.elsewhere() + "/nowhere/project"); },
       "project.missing"},
      state("IdentityLine1Word", "secret\n0\n5\n0\n" + PROJECT_ID + "\n", "identity.number", NOT_A_NUMBER,
            {"secret", PROJECT_ID}),
      state("IdentityLine2CarriageReturn", "0\n\r\n5\n0\nid\n", "identity.number", NOT_A_NUMBER),
      state("IdentityLine3Nul", bytes("0\n0\n\0\n0\nid\n", 11), "identity.number", NOT_A_NUMBER),
      state("IdentityLine4Word", "0\n0\n5\n-\nid\n", "identity.number", NOT_A_NUMBER),
      state("IdentityShifted", PROJECT_ID + "\n0\n0\n5\n0\n", "", "", {PROJECT_ID}),
      state("IdentityLine4TooLarge", "0\n0\n5\n3000000000\nid\n", "identity.number", TOO_LARGE),
      state("IdentityLine1TooLarge", "9223372036854775808\n0\n5\n0\nid\n", "identity.number", TOO_LARGE),
      state("IdentityTextBehindNumber", "12secret\n1,000\n0x10\n0\nid\n", "",
            "text behind a number: `12x`, `1,000`, `0x10`", {"secret"}),
      state("IdentityInFuture", "32503680000\n0\n5\n0\nid\n", "due.future", "a time in the future"),
      state("IdentityAtTheEndOfTime", "9223372036854775807\n9223372036854775807\n5\n0\nid\n", "due.future"),
      state("IdentityAtTheBeginningOfTime", "-9223372036854775808\n-9223372036854775808\n5\n0\nid\n", ""),
      state("IdentityBeforeEpoch", "-5\n0\n5\n0\nid\n", "", "a negative time"),
      state("IterationZero", "0\n0\n0\n0\nid\n", ""),
      state("IterationMinusOne", "0\n0\n-1\n0\nid\n", "", "iteration -1"),
      state("IterationMinusTwo", "0\n0\n-2\n0\nid\n", "identity.overflow",
            "iteration -2, or 9223372036854775807"),
      state("IterationAtItsEnd", "0\n0\n9223372036854775807\n0\nid\n", "identity.overflow",
            "iteration -2, or 9223372036854775807"),
      state("IterationNearItsEnd", "0\n0\n9223372036854775806\n0\nid\n", ""),
      state("OrbeloFlowSeven", "0\n0\n5\n7\nid\n", "", "orbelo flow neither 0 nor 1"),
      state("OrbeloFlowOne", "0\n0\n5\n1\nthe-hosts-own\n", "", "", {"the-hosts-own"}),
      state("IdentityBlankLine", "\n0\n\n0\nid\n", "", "a line among 1 to 4 empty"),
      state("IdentityOfBlankLines", "\n\n\n\n\n", "identity.id_empty"),
      state("IdentityWithSigns", " 5\n+6\n 7\n-1\n x \n", ""),
      state("IdentityEmpty", "", "identity.empty", "empty"),
      state("IdentityOfOneByte", "0", "identity.cut"),
      state("IdentityCutAfterLine1", seconds(-100000) + "\n", "identity.cut", "cut after line 1 or 2"),
      state("IdentityCutAfterLine2", seconds(-100000) + "\n0\n", "identity.cut", "cut after line 1 or 2"),
      state("IdentityCutAfterLine3", seconds(-100000) + "\n0\n5\n", "identity.cut", "cut after line 3 or 4"),
      state("IdentityCutAfterLine4", seconds(-100000) + "\n0\n5\n0\n", "identity.cut",
            "cut after line 3 or 4"),
      state("IdentityCutNotDue", seconds(-10) + "\n", "identity.cut"),
      state("IdentityIdEmpty", "0\n0\n5\n0\n\n", "identity.id_empty"),
      state("IdentityWithoutLineEnd", "0\n0\n5\n0\nid", "", "line 5 without its line end"),
      state("IdentityWithCarriageReturns", "0\r\n0\r\n5\r\n0\r\nsecret\r\n", "identity.carriage_return",
            "carriage return at the end of line 5", {"secret"}),
      state("ProjectIdWithNul", bytes("0\n0\n5\n0\ni\0secret\n", 17), "identity.id_nul", "a NUL in line 5",
            {"secret"}),
      state("ProjectIdAsScript", "0\n0\n5\n0\n[exec secret]\n", "identity.id_script", "", {"secret"}),
      state("IdentityOfSevenLines", "0\n0\n5\n0\nid\nsecret\ny\n", "", "more than five lines", {"secret"}),
      state("IdentityLinesRunTogether", "17953010451795301045\n0\n5\n0\n" + PROJECT_ID + "\n",
            "identity.number", TWO_HOSTS, {PROJECT_ID}),
      state("ProjectIdsRunTogether", "0\n0\n5\n0\n" + PROJECT_ID + PROJECT_ID + "\n", "", TWO_HOSTS,
            {PROJECT_ID}),
      state("IdentityOfBinary", std::string(4096, '\xFE'), "identity.number"),
      state("IdentityOfNuls", std::string(4096, '\0'), "identity.number"),
      state("IdentityOfAMebibyte", "0\n0\n5\n0\n" + std::string(1U << 20U, 'x') + "\n", ""),
      state("IdentityDue", whole, "", "", {PROJECT_ID}),
  };
  for (const char* product : {"KELVO", "KELVO_ALT", "TAVLO"}) {
    for (const std::int64_t age : {-3600, 0, 3600, 80000, 90000, 10000000}) {
      states.push_back({std::string("Age") + std::to_string(age) + product,
                        identity(seconds(-age) + "\n" + seconds(-age - 50000) + "\n5\n0\nid\n"), "",
                        product});
    }
  }
  return states;
}

std::vector<State> reportStates() {
  const std::string value = "a double quote, `$`, `[`, `]` or backslash in a value";
  const std::string key = "white space, `;` or an empty key";
  const auto item = [](const char* name, const char* text, const char* finding, const std::string& row) {
    return State{name, reportLater({"top", text}), finding, "KELVO", {}, row};
  };
  return {
      item("ValueWithDollar", "$fast", "report.hazard", value),
      item("ValueWithQuote", "a\"b", "report.hazard", value),
      {"KeyWithBlank", reportLater({"user script", "run.tcl"}), "report.hazard", "KELVO", {}, key},
      {"KeyEmpty", reportLater({"", "x"}), "report.hazard", "KELVO", {}, key},
      item("ValueWithLineFeed", "one\ntwo", "", "a line feed in a value"),
      {"ScriptStays", reportLater({"runs", "2"}), "", "KELVO", {}, "a file stays from an earlier run"},
      {"LogMissing", [](Place& place) { place.writeIdentity(0); }, "", "TAVLO", {}, "missing"},
      {"BothProducts", leaveReports, ""},
      {"ScriptCut", script([](const std::string& text) { return text.substr(0, text.size() / 2); }),
       "report.cut"},
      {"ScriptEmpty", script([](const std::string&) { return ""; }), "report.cut"},
      {"ScriptOfNuls", script([](const std::string&) { return std::string(5000, '\0'); }), "report.cut"},
      {"ScriptOfAnotherHour", script([](const std::string& text) {
         return boost::algorithm::replace_first_copy(text, "-clientid ", "-clientid 9");
       }),
       "report.checksum"},
      {"ScriptWithoutClient", script([](const std::string& text) {
         return boost::algorithm::replace_first_copy(text, "vestra_register_client -client kelvo\n", "");
       }),
       ""},
      {"ScriptOfTheMaker",
       script([](const std::string& text) {
         return boost::algorithm::replace_first_copy(text, "-regid \"", "-regid \"VESTRA_TEST_KELVO_");
       }),
       "",
       "KELVO",
       {"REG-42"}},
      {"RulesOfOthers",
       [](Place& place) {
         leaveReports(place);
         place.write(place.inVestra("usage_statistics_ext_kelvo.wdm"), "version = \"1.0\";\n");
       },
       ""},
      {"CopiesOfTheTool",
       [](Place& place) {
         place.writeIdentity(std::time(nullptr) - 10);
         place.write(place.inVestra("usage_statistics_ext_kelvo.xml"), "<x/>");
       },
       ""},
      {"ToolFailed",
       [](Place& place) {
         place.writeIdentity(std::time(nullptr) - 10);
         place.write(place.inVestra("usage_statistics_ext_kelvo.html"), "<x/>");
       },
       "tool.failed"},
      {"SentAndIdentityDeleted",
       [](Place& place) { place.write(place.inVestra("usage_statistics_ext_kelvo.xml"), "<x/>"); }, ""},
      {"ScriptKept",
       [](Place& place) {
         place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
         place.runHost();
       },
       ""},
      {"PersonalValue",
       [](Place& place) {
         place.setVariable("USER", "annabell");
         reportLater({"owner", "by annabell"})(place);
       },
       "report.personal",
       "KELVO",
       {"annabell"}},
      {"EmptyIdentifierReported",
       [](Place& place) {
         place.write(place.identity(), seconds(-10) + "\n0\n5\n0\n\n");
         place.runHost();
       },
       "report.empty_ids"},
      {"RegistrationNull",
       [](Place& place) {
         place.writeIdentity(0);
         place.setVariable("VESTRA_TESTKIT_NULL", "regid");
         place.runHost();
       },
       "support.null"},
  };
}

std::vector<State> fileKindStates() {
  struct Kind {
    const char* name;
    void (*make)(Place&, const std::string&);
  };
  const Kind kinds[] = {
      {"Directory", [](Place&, const std::string& path) { makeDirectory(path); }},
      {"FullDirectory", [](Place& place, const std::string& path) { place.write(path + "/x", ""); }},
      {"Pipe", [](Place&, const std::string& path) { makeNamedPipe(path); }},
      {"Socket", [](Place&, const std::string& path) { makeSocket(path); }},
      {"DanglingLink",
       [](Place& place, const std::string& path) { makeLink(path, place.elsewhere() + "/new"); }},
      {"LinkToNowhere", [](Place&, const std::string& path) { makeLink(path, "/nowhere/new"); }},
      {"Loop", [](Place&, const std::string& path) { makeLink(path, path); }},
      {"LinkToFile",
       [](Place& place, const std::string& path) {
         place.write(place.elsewhere() + "/target", "");
         makeLink(path, place.elsewhere() + "/target");
       }},
      {"LinkToReadOnly", [](Place&, const std::string& path) { makeLink(path, "/etc/hostname"); }},
      {"Null", [](Place&, const std::string& path) { makeLink(path, "/dev/null"); }},
  };
  struct Spot {
    const char* name;
    std::string (*path)(const Place&);
    const char* product;
  };
  const Spot spots[] = {
      {"Settings", [](const Place& place) { return place.settings(); }, "KELVO"},
      {"SettingsDirectory", [](const Place& place) { return place.home() + "/.Calvix/Common"; }, "KELVO"},
      {"Identity", [](const Place& place) { return place.identity(); }, "KELVO"},
      {"VestraDirectory", [](const Place& place) { return place.project() + "/vestra"; }, "KELVO"},
      {"Script", [](const Place& place) { return place.inVestra("kelvo_vestra.tcl"); }, "KELVO"},
      {"Rules", [](const Place& place) { return place.inVestra("usage_statistics_ext_kelvo.wdm"); }, "KELVO"},
      {"Log", [](const Place& place) { return place.inVestra("tavlo_vestra.log"); }, "TAVLO"},
  };
  std::vector<State> states;
  for (const Spot& spot : spots) {
    for (const Kind& kind : kinds) {
      states.push_back({std::string(spot.name) + kind.name,
                        [=](Place& place) { kind.make(place, spot.path(place)); }, "", spot.product});
    }
  }
  const auto isRow = [&](const char* name, const char* row, const char* finding) {
    for (State& state : states) {
      if (state.name == name) {
        state.row = row;
        state.finding = finding;
      }
    }
  };
  isRow("SettingsDirectory", "a directory, or a named pipe, in its place", "settings.special");
  isRow("IdentityDirectory", "a directory or a named pipe in its place", "identity.special");
  isRow("IdentityLinkToNowhere", "a link that leads nowhere", "");
  isRow("IdentityDanglingLink", "a link that leads nowhere", "identity.link");
  isRow("IdentityLoop", "", "identity.loop");
  states.push_back({"IdentityMemory",
                    [](Place& place) { makeLink(place.identity(), "/proc/self/mem"); },
                    "identity.read_error",
                    "KELVO",
                    {},
                    "a read error"});
  isRow("VestraDirectoryLinkToFile", "", "project.vestra_is_file");
  isRow("ScriptFullDirectory",
        "after the run, it cannot be removed (directory not writable, a non-empty directory in its place)",
        "tool.script_place");
  isRow("ScriptDirectory", "the file cannot be written (a directory in its place, no permission, full disk)",
        "tool.script_place");
  isRow("LogFullDirectory", "cannot be deleted (directory not writable, a non-empty directory in its place)",
        "tool.log");
  return states;
}

std::vector<State> modeStates() {
  struct Spot {
    const char* name;
    const char* path;
    const char* product;
  };
  const Spot spots[] = {
      {"Home", "/home", "KELVO"},
      {"SettingsDirectory", "/home/.Calvix/Common/2018.2", "KELVO"},
      {"Settings", "/home/.Calvix/Common/2018.2/vestra", "KELVO"},
      {"Project", "/project", "KELVO"},
      {"VestraDirectory", "/project/vestra", "KELVO"},
      {"Identity", "/project/vestra/.kelvo_vestrra.info", "KELVO"},
      {"Script", "/project/vestra/kelvo_vestra.tcl", "KELVO"},
      {"Rules", "/project/vestra/usage_statistics_ext_kelvo.wdm", "KELVO"},
      {"Log", "/project/vestra/tavlo_vestra.log", "TAVLO"},
  };
  std::vector<State> states;
  for (const Spot& spot : spots) {
    for (const mode_t mode : {0000U, 0200U, 0400U, 0500U, 0600U, 0777U}) {
      for (const bool isNew : {false, true}) {
        const std::string path = spot.path;
        const bool isBelowProject = path.rfind("/project", 0) == 0;
        if (isNew && path != "/home" && path != "/project") {
          continue;
        }
        states.push_back({std::string(spot.name) + (isNew ? "New" : "") + std::to_string(mode),
                          [=](Place& place) {
                            if (!isNew) {
                              leaveReports(place);
                              place.write(place.identity(), "0\n0\n5\n0\nid\n");
                              place.write(place.inVestra("tavlo_vestra.log"), "done\n");
                              place.write(place.settings(),
                                          isBelowProject ? "RandomID=" + ID + "\n" : "a=b\n");
                            }
                            chmod((place / path.substr(1)).c_str(), mode);
                          },
                          "", spot.product});
      }
    }
  }
  const auto isRow = [&](const std::string& name, const char* row, const char* finding) {
    for (State& state : states) {
      if (state.name == name) {
        state.row = row;
        state.finding = finding;
      }
    }
  };
  isRow("Settings128", "unreadable, but open for appending", "settings.unreadable");
  isRow("Settings256", "readable, but not writable", "settings.unwritable");
  isRow("HomeNew320", "directory cannot be made, or is not writable and the file is missing",
        "settings.unwritable");
  isRow("Identity256", "readable, but not writable", "identity.unwritable");
  isRow("Identity128", "writable, but not readable", "identity.unreadable");
  isRow("ProjectNew320", "missing, and `D/vestra` not writable or impossible to make", "project.unwritable");
  isRow("VestraDirectory320", "cannot be made by the shell", "tool.script_place");
  isRow("VestraDirectory511", "", "project.shared_writable");
  return states;
}

std::vector<State> supportStates() {
  const auto put = [](const std::string& text) {
    return ahead([text](Place& place, const std::string& path) { place.write(path, text); });
  };
  return {
      {"SupportLibraryMissing", variable("LD_LIBRARY_PATH", "/nowhere"), "support.absent"},
      {"SupportLibraryUnset", variable("LD_LIBRARY_PATH", ""), "support.absent"},
      {"SupportLibraryEmpty", put(""), "support.broken"},
      {"SupportLibraryText", put(std::string(100, 'x')), "support.broken"},
      {"SupportLibraryLongText", put(std::string(100000, 'x')), "support.broken"},
      {"SupportLibraryDirectory", ahead([](Place&, const std::string& path) { makeDirectory(path); }),
       "support.broken"},
      {"SupportLibraryDanglingLink",
       ahead([](Place&, const std::string& path) { makeLink(path, "/nowhere"); }), ""},
      {"SupportLibraryLoop", ahead([](Place&, const std::string& path) { makeLink(path, path); }), ""},
      {"SupportLibraryUnreadable", ahead([](Place& place, const std::string& path) {
         place.write(path, "");
         chmod(path.c_str(), 0);
       }),
       ""},
      {"SupportLibraryOf32Bits", altered([](std::string& library) { library[4] = 1; }), ""},
      {"SupportLibraryOfAnotherMachine", altered([](std::string& library) { library[18] = 40; }), ""},
      {"SupportLibraryCut", altered([](std::string& library) { library.resize(1000); }), "support.broken"},
      {"SupportLibraryHalf", altered([](std::string& library) { library.resize(library.size() / 2); }), ""},
      {"SupportLibraryOfNuls", altered([](std::string& library) {
         library.replace(64, library.size() - 64, library.size() - 64, '\0');
       }),
       ""},
      {"SupportLibraryWithoutEntryPoints", ahead([](Place& place, const std::string& path) {
         place.write(path, readFile(place.programs() + "/bin/libvestra.so.1"));
       }),
       "support.entry"},
      {"SupportLibraryWithoutExecPath", altered([](std::string& library) {
         boost::algorithm::replace_all(library, std::string("oza_vestra_exec_path"), "oza_vestra_exec_p_th");
       }),
       "support.entry"},
      {"SupportLibraryWithoutExecPathNotDue",
       [](Place& place) {
         place.writeIdentity(std::time(nullptr));
         altered([](std::string& library) {
           boost::algorithm::replace_all(library, std::string("oza_vestra_exec_path"),
                                         "oza_vestra_exec_p_th");
         })(place);
       },
       "support.entry"},
      {"SupportLibraryWithoutEnvironment", altered([](std::string& library) {
         boost::algorithm::replace_all(library, std::string("oza_vestra_enviroment_data"),
                                       "oza_vestra_enviroment_d_ta");
       }),
       "support.entry"},
      {"SupportLibraryLacksALibrary", altered([](std::string& library) {
         boost::algorithm::replace_all(library, std::string("libstdc++.so.6"), "libnothing.so6");
       }),
       "support.broken"},
      {"SupportLibraryLacksAVersion", altered([](std::string& library) {
         boost::algorithm::replace_all(library, std::string("GLIBCXX_3.4"), "GLIBCXX_9.4");
         boost::algorithm::replace_all(library, std::string("CXXABI_1.3"), "CXXABI_9.3");
       }),
       "support.broken"},
      {"SupportLibraryForTheProcessor", ahead([](Place& place, const std::string& path) {
         place.write(path, "");
         place.write(place.elsewhere() + "/glibc-hwcaps/x86-64-v2/" + LIBRARY_NAME,
                     readFile(place.support() + "/" + LIBRARY_NAME));
       }),
       ""},
      {"SupportLibraryPreloaded",
       [](Place& place) {
         place.write(place.elsewhere() + "/other.so", readFile(place.support() + "/" + LIBRARY_NAME));
         place.setVariable("LD_PRELOAD", place.elsewhere() + "/other.so");
         place.setVariable("LD_LIBRARY_PATH", "");
       },
       ""},
      {"LibraryPathWithBlankElement", variable("LD_LIBRARY_PATH", ":/nowhere:"), "support.writable"},
      {"LibraryPathRelative",
       [](Place& place) {
         place.write(place.elsewhere() + "/" + LIBRARY_NAME, readFile(place.support() + "/" + LIBRARY_NAME));
         place.setVariable("LD_LIBRARY_PATH", "../elsewhere");
       },
       "support.writable"},
      {"LibraryPathBySemicolons",
       [](Place& place) { place.setVariable("LD_LIBRARY_PATH", "/nowhere;" + place.support()); }, ""},
      {"LibraryPathWritableByAll",
       ahead([](Place& place, const std::string&) { chmod(place.elsewhere().c_str(), 0777); }),
       "support.writable"},
      {"LibraryPathSticky",
       ahead([](Place& place, const std::string&) { chmod(place.elsewhere().c_str(), 01777); }),
       "support.writable"},
      {"LibraryPathWritableByGroup",
       ahead([](Place& place, const std::string&) { chmod(place.elsewhere().c_str(), 0775); }),
       "support.writable"},
      {"NullExecPath", variable("VESTRA_TESTKIT_NULL", "exec_path"), "support.null"},
      {"NullEnvironment", variable("VESTRA_TESTKIT_NULL", "environment"), "support.null"},
      {"NullRegistration", variable("VESTRA_TESTKIT_NULL", "regid"), "support.null"},
      {"NullExecPathNotDue",
       then(identity(seconds(0) + "\n0\n5\n0\nid\n"), variable("VESTRA_TESTKIT_NULL", "exec_path")),
       "support.null"},
      {"ToolMissing", variable("VESTRA_TESTKIT_EXEC_PATH", "/nowhere/tool"), "tool.missing"},
      {"ToolNotOnPath", variable("VESTRA_TESTKIT_EXEC_PATH", "no-such-tool"), "tool.missing"},
      {"ToolIsADirectory", variable("VESTRA_TESTKIT_EXEC_PATH", "/tmp"), "tool.missing"},
  };
}

std::vector<State> environmentStates() {
  std::vector<State> states = {
      {"HomeUnset", variable("HOME", ""), "home.unset", "KELVO", {}, "", false},
      {"HomeRelative", variable("HOME", "here"), "home.relative"},
      {"HomeMissing", variable("HOME", "/nowhere/home"), "settings.unwritable"},
      {"HomeIsAFile",
       [](Place& place) {
         place.write(place.elsewhere() + "/file", "");
         place.setVariable("HOME", place.elsewhere() + "/file");
       },
       "settings.unwritable"},
      {"HomeWithSlash", [](Place& place) { place.setVariable("HOME", place.home() + "/"); }, ""},
      {"FilesAreKept", variable("CALVIX_VESTRA_DEBUG_EXT", "1"), "env.debug"},
      {"FilesAreKeptByZero", variable("CALVIX_VESTRA_DEBUG_EXT", "0"), "env.debug"},
      {"FilesAreNotKept", variable("CALVIX_VESTRA_DEBUG_EXT", ""), ""},
      {"InternalSitesReport", variable("CALVIX_VESTRA_INTERNAL_TRANSMIT", "1"), "site.override"},
      {"OtherTestKitVariable", variable("VESTRA_OUTBOX", "/nowhere"), "env.testkit"},
  };
  struct Name {
    const char* name;
    const char* path;
    bool isShells;
  };
  const Name names[] = {
      {"Blank", "my project", true}, {"Quote", "ann's", true},     {"DoubleQuote", "a\"b", true},
      {"Dollar", "a$b", true},       {"DollarAtEnd", "a$", false}, {"Semicolon", "a;b", true},
      {"Ampersand", "a&b", true},    {"Star", "a*b", false},       {"Bracket", "a[1]", false},
      {"Backslash", "a\\b", true},   {"Backquote", "a`b", true},   {"Parenthesis", "a(b", true},
      {"Hash", "a#b", false},        {"Tilde", "~ann", false},     {"Equals", "a=b", false},
      {"Percent", "a%b", false},     {"Brace", "a{b}", false},     {"Exclamation", "a!", false},
      {"Umlaut", "\xC3\xA4", false}, {"NotUtf8", "a\xFF", false},  {"LineFeed", "a\nb", true}};
  for (const Name& name : names) {
    for (const char* product : {"KELVO", "TAVLO"}) {
      states.push_back({std::string("ProjectWith") + name.name + product, inDirectory(name.path),
                        name.isShells ? "project.shell" : "", product});
    }
  }
  return states;
}

}  // namespace vestra_test
