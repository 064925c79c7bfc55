#include "identity/vestra_setting.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem/operations.hpp>

#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "files/path_text.h"
#include "files/read_line.h"
#include "identity/fields.h"
#include "identity/random_uuid.h"

namespace Oza {
namespace {

constexpr const char* RANDOM_ID = "RandomID";
constexpr const char* CALVIX_VERSION = "2018.2";
constexpr const char* FILE_NAME = "vestra";

}  // namespace

void readSettings(std::istream& in, std::map<std::string, std::string>& properties) {
  std::string line;
  while (readLine(in, line)) {
    boost::algorithm::trim(line);
    const std::vector<std::string> fields = fieldsOf(line, "=");
    if (fields.size() == 2) {
      properties.emplace(fields[0], fields[1]);
    }
  }
}

std::string settingsPath(const char* home) {
  std::string path = home != nullptr ? home : "";
  if (path.empty()) {
    path = "/tmp";
  }
  path += "/.Calvix/";
  path += "Common/";
  path += CALVIX_VERSION;
  path += "/";
  path += FILE_NAME;
  return path;
}

VestraSetting::VestraSetting() {
  setOrbeloFile();
  readFile();
}

void VestraSetting::setOrbeloFile() { settingsFile = settingsPath(std::getenv("HOME")); }

void VestraSetting::readFile() {
  std::ifstream in;
  openFile(in, settingsFile, std::ios_base::in);
  readSettings(in, properties);
}

std::string VestraSetting::getPropertyValue(const std::string& key) const {
  const auto found = properties.find(key);
  return found != properties.end() ? found->second : std::string();
}

bool VestraSetting::stringToBool(const std::string& text) { return text.rfind("true", 0) == 0; }

std::string VestraSetting::getCalvixVersion() const { return CALVIX_VERSION; }

std::string VestraSetting::getRandomId() {
  const std::string known = getPropertyValue(RANDOM_ID);
  if (!known.empty()) {
    return known;
  }
  if (!makeSettingsDirectory()) {
    return {};
  }
  FileSizeSignalHold hold;
  std::ofstream out;
  openFile(out, settingsFile, std::ios_base::app);
  if (!out.is_open()) {
    return {};
  }
  const std::string identifier = randomUuid();
  out << RANDOM_ID << '=' << identifier << std::endl;
  // A line with an empty value ahead of all others stands in the table and
  // stays: such a file gets a new identifier at every call.
  properties.emplace(RANDOM_ID, identifier);
  return identifier;
}

// Where anything stands in the file's place, nothing is made.
bool VestraSetting::makeSettingsDirectory() const {
  try {
    if (!boost::filesystem::exists(settingsFile)) {
      boost::filesystem::create_directories(directoryOf(settingsFile, std::strlen(FILE_NAME)));
    }
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace Oza
