#include "reliability/workplace.h"

#include <algorithm>
#include <ostream>
#include <regex>
#include <vector>

#include <boost/filesystem.hpp>

#include "support/files.h"
#include "support/identity_text.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

constexpr const char* PROJECT_NAMES[] = {"a new project", "a known project"};
constexpr const char* HOME_NAMES[] = {"a new home", "a home without identifier", "a known home"};

constexpr const char* OTHER_LINES = "colour=blue\n# a note\nshape = round\n";
constexpr const char* IDENTIFIER_LINE = "RandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";

std::string withoutChance(const std::string& text) {
  static const std::regex identifier("[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}");
  static const std::regex recentTime("(?!" + Workplace::oldTime() + ")[0-9]{10}");
  return std::regex_replace(std::regex_replace(text, identifier, "UUID"), recentTime, "TIME");
}

std::string accountOf(const fs::path& path) {
  const std::string content = fs::is_regular_file(path) ? readFile(path.string()) : "";
  return path.string() + "\n" + withoutChance(content) + "\n";
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Situation& situation) {
  return out << (situation.product == Oza::Vestra::TAVLO ? "the lab tool" : "the simulator") << ", "
             << PROJECT_NAMES[situation.project] << ", " << HOME_NAMES[situation.home];
}

Workplace::Workplace(const Situation& found) : situation(found) { reset(); }

HostStart Workplace::start() const {
  HostStart start;
  start.home = home();
  start.project = project();
  start.product = situation.product;
  start.records = directory / "records";
  return start;
}

void Workplace::reset() {
  for (const char* name : {"home", "project", "records"}) {
    fs::remove_all(directory / name);
    fs::create_directory(directory / name);
  }
  furnish();
}

void Workplace::furnish() {
  if (situation.home != Situation::NEW_HOME) {
    writeFile(settingsFile(), settingsBefore());
  }
  if (situation.project == Situation::KNOWN_PROJECT) {
    writeFile(identityFile(), *identityBefore());
    writeFile(scriptFile(), "vestra_init of an earlier run\n");
    writeFile(rulesFile(), "version of an earlier run\n");
    writeFile(inVestraDirectory("tavlo_vestra.log"), "log of an earlier run\n");
  }
}

void Workplace::makeDue() {
  const std::string text = contentOf(identityFile()).value_or("");
  if (!text.empty()) {
    writeFile(identityFile(), "0" + text.substr(std::min(text.find('\n'), text.size())));
  }
}

std::string Workplace::scriptFile() const {
  return inVestraDirectory(situation.product == Oza::Vestra::TAVLO ? "tavlo_vestra.tcl" : "kelvo_vestra.tcl");
}

std::string Workplace::rulesFile() const {
  return inVestraDirectory(situation.product == Oza::Vestra::TAVLO ? "usage_statistics_ext_tavlo.wdm"
                                                                   : "usage_statistics_ext_kelvo.wdm");
}

std::string Workplace::settingsBefore() const {
  switch (situation.home) {
    case Situation::HOME_WITHOUT_IDENTIFIER:
      return OTHER_LINES;
    case Situation::KNOWN_HOME:
      return std::string(OTHER_LINES) + IDENTIFIER_LINE + "k=v\n";
    case Situation::NEW_HOME:
      break;
  }
  return {};
}

std::optional<std::string> Workplace::identityBefore() const {
  if (situation.project == Situation::NEW_PROJECT) {
    return std::nullopt;
  }
  return identityText(oldTime(), "0", "7", "0", KNOWN_PROJECT_ID);
}

std::string Workplace::state() const {
  std::vector<fs::path> paths;
  for (const std::string& root : {home(), project()}) {
    std::copy(fs::recursive_directory_iterator(root), fs::recursive_directory_iterator(),
              std::back_inserter(paths));
  }
  std::sort(paths.begin(), paths.end());
  std::string all;
  for (const fs::path& path : paths) {
    all += accountOf(path);
  }
  return all;
}

std::optional<std::string> contentOf(const std::string& path) {
  return fs::is_regular_file(path) ? std::optional<std::string>(readFile(path)) : std::nullopt;
}

}  // namespace vestra_test
