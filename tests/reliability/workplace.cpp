#include "reliability/workplace.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <vector>

#include <boost/filesystem.hpp>

#include "support/files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

constexpr const char* PROJECT_NAMES[] = {"a new project", "a known project"};
constexpr const char* HOME_NAMES[] = {"a new home", "a home without identifier", "a known home"};

constexpr const char* OTHER_LINES = "colour=blue\n# a note\nshape = round\n";
constexpr const char* IDENTIFIER_LINE = "RandomID=3f2a9c4e-8b1d-4c7a-9e2f-5d6b7a8c9d0e\n";

constexpr std::size_t UUID_LENGTH = 36;
constexpr std::size_t TIME_LENGTH = 10;

bool isHexDigit(char letter) { return std::isxdigit(static_cast<unsigned char>(letter)) != 0; }

bool isDigit(char letter) { return std::isdigit(static_cast<unsigned char>(letter)) != 0; }

bool isIdentifier(const std::string& text) {
  return text.size() == UUID_LENGTH && text[8] == '-' && text[13] == '-' && text[18] == '-' &&
         text[23] == '-' && std::count_if(text.begin(), text.end(), isHexDigit) == UUID_LENGTH - 4;
}

bool isRecentTime(const std::string& text) {
  return text.size() == TIME_LENGTH && std::all_of(text.begin(), text.end(), isDigit) &&
         text != Workplace::oldTime();
}

std::string withoutChance(const std::string& text) {
  std::string rest;
  for (std::size_t i = 0; i < text.size();) {
    if (isIdentifier(text.substr(i, UUID_LENGTH))) {
      rest += "UUID";
      i += UUID_LENGTH;
    } else if (isRecentTime(text.substr(i, TIME_LENGTH))) {
      rest += "TIME";
      i += TIME_LENGTH;
    } else {
      rest += text[i++];
    }
  }
  return rest;
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
  return oldTime() + "\n0\n7\n0\n" + KNOWN_PROJECT_ID + "\n";
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
