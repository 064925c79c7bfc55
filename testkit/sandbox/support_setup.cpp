#include "sandbox/support_setup.h"

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>

namespace vestra::testkit {
namespace {

const std::map<std::string, std::string>& entryPoints() {
  static const std::map<std::string, std::string> names{{"exec_path", "oza_vestra_exec_path"},
                                                        {"regid", "oza_vestra_regid"},
                                                        {"environment", "oza_vestra_enviroment_data"}};
  return names;
}

void refuseUnknown(const SupportAnswers& answers) {
  for (const std::string& what : answers.missing) {
    if (what != "library" && what != "tool" && entryPoints().count(what) == 0) {
      throw std::runtime_error("SupportAnswers::missing holds \"" + what +
                               "\", which is none of library, exec_path, regid, environment and tool");
    }
  }
}

bool isMissing(const SupportAnswers& answers, const std::string& what) {
  return std::count(answers.missing.begin(), answers.missing.end(), what) != 0;
}

}  // namespace

// The shell takes what the library appends as further parameters.
std::string toolFor(const SupportAnswers& answers) {
  std::string tool = answers.execPath.value_or(designToolPath());
  if (isMissing(answers, "tool")) {
    tool += "-that-is-missing";
  } else if (answers.toolStatus) {
    tool = "sh -c 'exit " + std::to_string(*answers.toolStatus) + "'";
  }
  const auto delay = std::chrono::duration<double>(answers.toolDelay).count();
  return delay > 0 ? "sleep " + std::to_string(delay) + "; " + tool : tool;
}

std::string supportLibraryFor(const SupportAnswers& answers) {
  refuseUnknown(answers);
  return isMissing(answers, "library") ? "" : supportLibraryPath();
}

std::string missingEntryPointsOf(const SupportAnswers& answers) {
  std::string symbols;
  for (const auto& [answer, symbol] : entryPoints()) {
    symbols += isMissing(answers, answer) ? symbol + "," : "";
  }
  return symbols;
}

void openSupportLibrary(const std::string& path) {
  if (!path.empty() && dlopen(path.c_str(), RTLD_LAZY) == nullptr) {
    throw std::runtime_error(dlerror());
  }
}

}  // namespace vestra::testkit
