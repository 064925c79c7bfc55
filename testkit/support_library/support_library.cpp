// The stand-in for the support library that Vestra opens by name. It has the real
// file name and the real entry points, and never lies on a default search path.

#include <dlfcn.h>

#include <string>

#include "answers.h"

namespace vestra::testkit {
namespace {

std::string directoryOfThisLibrary() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&directoryOfThisLibrary), &info);
  const std::string path = info.dli_fname;
  return path.substr(0, path.rfind('/'));
}

std::string designToolBesideThis() { return directoryOfThisLibrary() + "/" DESIGN_TOOL_FROM_HERE; }

/// Six pairs that describe the user's environment, then pairs of the project's facts.
constexpr const char* ENVIRONMENT =
    "os_name#Linux#os_release#stand-in#cpu_name#stand-in#cpu_speed#1000 MHz#total_processors#1"
    "#system_ram#1 GB#date_generated#2018-01-01T00:00:00Z#product_version#2018.2#build_version#stand-in"
    "#os_platform#x86_64#registration_id#stand-in-registration#beta#FALSE#route_design#FALSE";

/// Keeps the text that the caller is given a pointer to until the next answer.
const char* answer(std::string& kept, const std::string& name, const std::string& otherwise) {
  if (isNull(name)) {
    return nullptr;
  }
  const auto told = setting(name);
  kept = told.value_or(otherwise);
  return kept.c_str();
}

std::string call(const std::string& entryPoint, const char* argument) {
  return entryPoint + (argument != nullptr ? "(\"" + std::string(argument) + "\")" : "(null)");
}

}  // namespace
}  // namespace vestra::testkit

#define VESTRA_TESTKIT_ENTRY_POINT extern "C" __attribute__((visibility("default")))

VESTRA_TESTKIT_ENTRY_POINT const char* oza_vestra_exec_path() {
  static std::string kept;
  vestra::testkit::recordCall("oza_vestra_exec_path()");
  return vestra::testkit::answer(kept, "exec_path", vestra::testkit::designToolBesideThis());
}

VESTRA_TESTKIT_ENTRY_POINT const char* oza_vestra_regid(const char* purpose) {
  static std::string kept;
  vestra::testkit::recordCall(vestra::testkit::call("oza_vestra_regid", purpose));
  return vestra::testkit::answer(kept, "regid", "stand-in-registration");
}

VESTRA_TESTKIT_ENTRY_POINT const char* oza_vestra_enviroment_data(const char* product) {
  static std::string kept;
  vestra::testkit::recordCall(vestra::testkit::call("oza_vestra_enviroment_data", product));
  return vestra::testkit::answer(kept, "environment", vestra::testkit::ENVIRONMENT);
}
