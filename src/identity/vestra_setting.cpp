#include "identity/vestra_setting.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <vector>

#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem/operations.hpp>

#include "files/file_lock.h"
#include "files/path_text.h"
#include "files/sigxfsz_guard.h"
#include "identity/fields.h"
#include "identity/random_uuid.h"

namespace Oza {
namespace {

constexpr const char* RANDOM_ID = "RandomID";
constexpr const char* CALVIX_VERSION = "2018.2";

void readSettingsFile(const Descriptor& file, std::map<std::string, std::string>& properties) {
  if (const std::optional<std::string> text = file.read()) {
    readSettings(*text, properties);
  }
}

std::string randomIdIn(const Descriptor& file) {
  std::map<std::string, std::string> properties;
  readSettingsFile(file, properties);
  return properties[RANDOM_ID];
}

}  // namespace

void readSettings(const std::string& text, std::map<std::string, std::string>& properties) {
  for (std::string& line : fieldsOf(text, '\n')) {
    boost::algorithm::trim(line);
    const std::vector<std::string> fields = fieldsOf(line, '=');
    if (fields.size() == 2) {
      properties.emplace(fields[0], fields[1]);
    }
  }
}

std::string settingsPath(const char* home) {
  const bool hasHome = home != nullptr && *home != '\0';
  return std::string(hasHome ? home : "/tmp") + "/.Calvix/Common/" + CALVIX_VERSION + "/vestra";
}

VestraSetting::VestraSetting() {
  setOrbeloFile();
  readFile();
}

void VestraSetting::setOrbeloFile() { settingsFile = settingsPath(std::getenv("HOME")); }

void VestraSetting::readFile() {
  readSettingsFile(Descriptor(settingsFile, O_RDONLY, timeBudget), properties);
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
  const Descriptor file(settingsFile, O_RDWR | O_APPEND | O_CREAT, timeBudget);
  return file.error() == EACCES
             ? findOrAppendRandomId(Descriptor(settingsFile, O_WRONLY | O_APPEND | O_CREAT, timeBudget))
             : findOrAppendRandomId(file);
}

// Closing the file releases the lock.
std::string VestraSetting::findOrAppendRandomId(const Descriptor& file) {
  if (!file.canHoldText()) {
    return {};
  }
  const bool locked = lockFile(file, LockKind::EXCLUSIVE, timeBudget);
  std::string identifier = locked ? randomIdIn(file) : std::string();
  if (identifier.empty()) {
    SigxfszGuard guard;
    identifier = randomUuid();
    file.append(std::string(RANDOM_ID) + "=" + identifier + "\n");
  }
  // emplace() keeps the first entry: if the first RandomID is empty, every call makes a new one.
  properties.emplace(RANDOM_ID, identifier);
  return identifier;
}

// Creates nothing if the path exists, whatever it is.
bool VestraSetting::makeSettingsDirectory() const {
  try {
    if (!boost::filesystem::exists(settingsFile)) {
      boost::filesystem::create_directories(directoryOfFile(settingsFile));
    }
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace Oza
