#include "inspect/scenarios.h"

#include <sys/stat.h>

#include <ctime>

#include <boost/algorithm/string/replace.hpp>

#include "inspect/damage.h"
#include "support/files.h"
#include "support/special_files.h"

namespace vestra_test {
namespace {

void nothing(Place&) {}

/// A report of each product that was not due, so that it lies there.
void reports(Place& place) {
  place.writeIdentity(std::time(nullptr));
  place.runHost("KELVO", {"runs", "2", "runs", "3", "top", "$fast"});
  place.runHost("TAVLO", {"probes", "4"});
}

std::function<void(Place&)> variable(const std::string& name, const std::string& value) {
  return [=](Place& place) {
    reports(place);
    place.setVariable(name, value);
  };
}

std::function<void(Place&)> script(const std::function<std::string(std::string)>& change) {
  return [=](Place& place) {
    reports(place);
    const std::string path = place.inVestra("kelvo_vestra.tcl");
    place.write(path, change(readFile(path)));
  };
}

/// What lies ahead of the support library on the loader's path.
std::function<void(Place&)> ahead(const std::function<void(Place&, const std::string&)>& make) {
  return [=](Place& place) {
    make(place, place.elsewhere() + "/" + LIBRARY_NAME);
    place.setVariable("LD_LIBRARY_PATH", place.elsewhere() + ":" + place.support());
  };
}

std::function<void(Place&)> mode(const std::string& name, mode_t bits) {
  return [=](Place& place) {
    reports(place);
    chmod((place.project() + name).c_str(), bits);
  };
}

std::vector<Scenario> commandLines() {
  return {
      {"NothingAtAll", nothing, {}},
      {"ReportsOfBothProducts", reports, {}},
      {"Document", reports, {"--json"}},
      {"RedactedText", reports, {"--redact"}},
      {"RedactedDocument", reports, {"--redact", "--json"}},
      {"Colours", reports, {"--color", "always"}},
      {"OneProduct", reports, {"--product", "TAVLO"}},
      {"AnotherProduct", reports, {"--product", "KELVO_ALT"}},
      {"LongAgo", reports, {"--now", "1"}},
      {"LongAfter", reports, {"--now", "32503680000"}},
      {"EveryFindingFails", reports, {"--fail-on", "note"}},
      {"AnotherHome", reports, {"--home", "@/home"}},
      {"MissingProject", nothing, {"@/nowhere/project"}},
      {"HostThatIsMissing", reports, {"--host", "@/nowhere"}},
      {"EnvironmentThatIsMissing", reports, {"--env", "@/nowhere"}},
      {"HostThatIsText",
       [](Place& place) { place.write(place.elsewhere() + "/host", "text"); },
       {"--host", "@/host"}},
      {"HostWithOtherRights",
       [](Place& place) {
         run({"cp", place.host(), place.elsewhere() + "/host"});
         chmod((place.elsewhere() + "/host").c_str(), 04755);
       },
       {"--host", "@/host"}},
      {"EnvironmentByLines",
       [](Place& place) {
         place.write(place.elsewhere() + "/env", "HOME=/nowhere\nCALVIX_VESTRA_DEBUG_EXT=0\n");
       },
       {"--env", "@/env"}},
      {"EnvironmentByNuls",
       [](Place& place) { place.write(place.elsewhere() + "/env", std::string("HOME=/nowhere\0A=b\0", 18)); },
       {"--env", "@/env"}},
      {"ProjectWithBlanks",
       [](Place& place) { place.write(place.elsewhere() + "/my project/vestra/.kelvo_vestrra.info", ""); },
       {"@/my project"}},
      {"ProjectByALink",
       [](Place& place) {
         reports(place);
         makeLink(place.elsewhere() + "/link", place.project());
       },
       {"@/link"}},
      {"ProjectThatIsAFile",
       [](Place& place) { place.write(place.elsewhere() + "/file", "text"); },
       {"@/file"}},
  };
}

std::vector<Scenario> surroundings() {
  return {
      {"HomeUnset", variable("HOME", ""), {}},
      {"HomeRelative", variable("HOME", "here"), {}},
      {"HomeMissing", variable("HOME", "/nowhere/home"), {}},
      {"FilesAreKept", variable("CALVIX_VESTRA_DEBUG_EXT", "1"), {}},
      {"InternalSitesReport", variable("CALVIX_VESTRA_INTERNAL_TRANSMIT", "1"), {}},
      {"DumbTerminal", variable("TERM", "dumb"), {}},
      {"LoginNameInValues", variable("USER", "runs"), {}},
      {"SupportLibraryMissing", variable("LD_LIBRARY_PATH", "/nowhere"), {}},
      {"LibraryPathWithBlankElement", variable("LD_LIBRARY_PATH", ":/nowhere:"), {}},
      {"SupportLibraryEmpty",
       ahead([](Place& place, const std::string& path) { place.write(path, ""); }),
       {}},
      {"SupportLibraryText",
       ahead([](Place& place, const std::string& path) { place.write(path, std::string(100, 'x')); }),
       {}},
      {"SupportLibraryCut",
       ahead([](Place& place, const std::string& path) {
         place.write(path, readFile(place.support() + "/" + LIBRARY_NAME).substr(0, 1000));
       }),
       {}},
      {"SupportLibraryDirectory", ahead([](Place&, const std::string& path) { makeDirectory(path); }), {}},
      {"SupportLibraryPipe", ahead([](Place&, const std::string& path) { makeNamedPipe(path); }), {}},
      {"SupportLibraryDanglingLink",
       ahead([](Place&, const std::string& path) { makeLink(path, "/nowhere"); }),
       {}},
      {"SupportLibraryWritableByAll",
       ahead([](Place& place, const std::string&) { chmod(place.elsewhere().c_str(), 0777); }),
       {}},
  };
}

std::vector<Scenario> projects() {
  return {
      {"VestraDirectoryOpenToAll", mode("/vestra", 0777), {}},
      {"VestraDirectoryWithoutSearch", mode("/vestra", 0600), {}},
      {"VestraDirectoryWithoutAnyRight", mode("/vestra", 0), {}},
      {"ScriptWithoutAnyRight", mode("/vestra/kelvo_vestra.tcl", 0), {}},
      {"RulesWithoutAnyRight", mode("/vestra/usage_statistics_ext_kelvo.wdm", 0), {}},
      {"ScriptCut", script([](const std::string& text) { return text.substr(0, text.size() / 2); }), {}},
      {"ScriptEmpty", script([](const std::string&) { return ""; }), {}},
      {"ScriptWithoutMeaning", script([](const std::string&) { return std::string(5000, '\0'); }), {}},
      {"ScriptWithControlBytes",
       script([](const std::string& text) {
         return boost::algorithm::replace_all_copy(text, "$fast", "\033[2J\xFF");
       }),
       {}},
      {"ScriptOfAnotherHour",
       script([](const std::string& text) {
         return boost::algorithm::replace_first_copy(text, "-clientid ", "-clientid 9");
       }),
       {}},
      {"CopiesOfTheTool",
       [](Place& place) {
         reports(place);
         place.write(place.inVestra("usage_statistics_ext_kelvo.xml"), "<x/>");
         place.write(place.inVestra("usage_statistics_ext_tavlo.html"), "<html/>");
         place.write(place.inVestra("tavlo_vestra.log"), "done\n");
       },
       {}},
  };
}

std::vector<Scenario> allScenarios() {
  std::vector<Scenario> all;
  for (const Damage& damage : damages()) {
    all.push_back({damage.name, damage.make, {"--product", damage.product}});
  }
  for (const auto& some : {commandLines(), surroundings(), projects()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) { return out << scenario.name; }

const std::vector<Scenario>& scenarios() {
  static const std::vector<Scenario> all = allScenarios();
  return all;
}

Words wordsFor(const std::string& command, const Scenario& scenario, const Place& place) {
  Words words = {command};
  for (const std::string& word : scenario.words) {
    words.push_back(boost::algorithm::replace_first_copy(word, "@", place.elsewhere()));
  }
  return words;
}

}  // namespace vestra_test
