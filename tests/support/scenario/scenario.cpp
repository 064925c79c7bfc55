#include "support/scenario/scenario.h"

#include <ctime>

#include <boost/filesystem/operations.hpp>

namespace vestra_test {

Scenario::Scenario() {
  answers.registrationId = "REG-1";
  answers.environment = ENVIRONMENT;
  sandbox.setSupportAnswers(answers);
}

void Scenario::writeIdentity(const std::string& text) { writeFile(sandbox.identityFile(), text); }

void Scenario::writeSettings(const std::string& text) { writeFile(sandbox.settingsFile(), text); }

std::string Scenario::useTool(const std::string& commands) {
  const std::string tool = sandbox.directory() + "/tool";
  writeFile(tool, "#!/bin/sh\n" + commands + "\n");
  boost::filesystem::permissions(tool, boost::filesystem::perms(0755));
  answers.execPath = tool;
  sandbox.setSupportAnswers(answers);
  return tool;
}

std::string Scenario::inVestraDirectory(const std::string& name) const {
  return sandbox.project() + "/vestra/" + name;
}

std::vector<std::string> Scenario::filesInVestraDirectory() const { return namesIn(inVestraDirectory("")); }

std::int64_t now() { return std::time(nullptr); }

}  // namespace vestra_test
