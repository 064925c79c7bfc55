#include "sandbox/support_setup.h"

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>

#include <boost/filesystem.hpp>

#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

constexpr const char* FILE_NAME = "libqvzcommonvestrasupport.so";

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

/// Spoils a symbol's name, so that looking it up finds nothing.
void spoil(std::string& library, const std::string& symbol) {
  const std::string wanted = '\0' + symbol + '\0';
  for (std::size_t at = library.find(wanted); at != std::string::npos; at = library.find(wanted, at + 1)) {
    library[at + 1] = '-';
  }
}

std::string libraryWithout(const std::vector<std::string>& missing) {
  std::string library = bytesOf(supportLibraryPath()).value_or("");
  for (const std::string& what : missing) {
    const auto entryPoint = entryPoints().find(what);
    if (entryPoint != entryPoints().end()) {
      spoil(library, entryPoint->second);
    }
  }
  return library;
}

}  // namespace

bool isMissing(const SupportAnswers& answers, const std::string& what) {
  return std::count(answers.missing.begin(), answers.missing.end(), what) != 0;
}

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

std::string supportLibraryFor(const SupportAnswers& answers, const std::string& directory) {
  refuseUnknown(answers);
  if (isMissing(answers, "library")) {
    return "";
  }
  const bool isStandIn = std::all_of(answers.missing.begin(), answers.missing.end(),
                                     [](const std::string& what) { return what == "tool"; });
  if (isStandIn) {
    return supportLibraryPath();
  }
  boost::filesystem::create_directory(directory);
  std::string path = directory + "/" + FILE_NAME;
  writeBytes(path, libraryWithout(answers.missing));
  return path;
}

void openSupportLibrary(const std::string& path) {
  if (!path.empty() && dlopen(path.c_str(), RTLD_LAZY) == nullptr) {
    throw std::runtime_error(dlerror());
  }
}

}  // namespace vestra::testkit
