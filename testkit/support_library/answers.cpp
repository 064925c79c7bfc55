#include "answers.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vestra::testkit {
namespace {

std::string variableOf(const std::string& name) {
  std::string variable = "VESTRA_TESTKIT_";
  for (const char letter : name) {
    variable += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  }
  return variable;
}

}  // namespace

std::optional<std::string> setting(const std::string& name) {
  const char* const value = std::getenv(variableOf(name).c_str());
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool isNull(const std::string& name) {
  std::istringstream names(setting("null").value_or(""));
  for (std::string each; std::getline(names, each, ',');) {
    if (each == name) {
      return true;
    }
  }
  return false;
}

void recordCall(const std::string& call) {
  if (const auto file = setting("calls")) {
    std::ofstream(*file, std::ios::app) << call + "\n";
  }
}

}  // namespace vestra::testkit
