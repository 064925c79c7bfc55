#ifndef VESTRA_TESTS_SUPPORT_SCENARIO_SCENARIO_H
#define VESTRA_TESTS_SUPPORT_SCENARIO_SCENARIO_H

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <vestra/testkit/matchers.h>
#include <vestra/testkit/sandbox.h>
#include <vestra/vestra.h>

#include "support/files.h"
#include "support/identity_text.h"

namespace vestra_test {

using namespace testing;
using namespace vestra::testkit;
using Oza::Vestra;

/// Six pairs of the user's environment, then one project fact.
inline constexpr const char* ENVIRONMENT =
    "os_name#Linux#os_release#12#cpu_name#X1#cpu_speed#3 GHz#total_processors#8#system_ram#32 GB"
    "#date_generated#2026-11-21";

/// A sandbox whose support library gives fixed answers.
class Scenario : public Test {
 protected:
  Scenario();

  /// Writes an identity file, as an earlier run of the project would have left it.
  void writeIdentity(const std::string& text);
  /// Writes a settings file, as an earlier run of the user would have left it.
  void writeSettings(const std::string& text);
  /// Makes a shell script the main design tool, which transmits nothing.
  /// @return What the support library says of it.
  std::string useTool(const std::string& commands = "");

  std::string inVestraDirectory(const std::string& name) const;
  std::vector<std::string> filesInVestraDirectory() const;

  Sandbox sandbox;
  SupportAnswers answers;
};

/// Seconds since the epoch.
std::int64_t now();

}  // namespace vestra_test

#endif
