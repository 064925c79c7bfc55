#include "support/scenario/scenario.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <system_error>

#include <boost/filesystem.hpp>

namespace vestra_test {

Scenario::Scenario() {
  answers.registrationId = "REG-1";
  answers.environment = ENVIRONMENT;
  sandbox.setSupportAnswers(answers);
}

void Scenario::writeIdentity(const std::string& text) { writeFile(sandbox.identityFile(), text); }

void Scenario::writeSettings(const std::string& text) { writeFile(sandbox.settingsFile(), text); }

RecordingTool& Scenario::useRecordingTool(const std::string& ending) {
  recordingTool = std::make_unique<RecordingTool>(sandbox.directory(), inVestraDirectory(""), ending);
  answers.execPath = recordingTool->command();
  sandbox.setSupportAnswers(answers);
  return *recordingTool;
}

void Scenario::openToEverybody() {
  umask(0);
  boost::filesystem::permissions(sandbox.directory(), boost::filesystem::all_all);
  for (const auto& entry : boost::filesystem::recursive_directory_iterator(sandbox.directory())) {
    boost::filesystem::permissions(entry.path(), boost::filesystem::all_all);
  }
}

std::string Scenario::inVestraDirectory(const std::string& name) const {
  return sandbox.project() + "/vestra/" + name;
}

std::vector<std::string> Scenario::filesInVestraDirectory() const { return namesIn(inVestraDirectory("")); }

void becomeOrdinaryUser() {
  if (getuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) {
    throw std::system_error(errno, std::generic_category(), "becoming an ordinary user");
  }
}

std::int64_t now() { return std::time(nullptr); }

}  // namespace vestra_test
