#ifndef VESTRA_TESTS_IDENTITY_SETTINGS_FIXTURE_H
#define VESTRA_TESTS_IDENTITY_SETTINGS_FIXTURE_H

#include "identity/vestra_setting.h"
#include "support/test.h"

namespace vestra_test {

/// A home directory for the settings file. Nothing may wait here.
class SettingsFixture : public testing::Test {
 protected:
  std::string directory() const { return home / ".Calvix/Common/2018.2"; }
  std::string file() const { return directory() + "/vestra"; }
  void writeSettings(const std::string& bytes) const { writeFile(file(), bytes); }
  std::string settings() const { return readFile(file()); }

  /// The identifier that a process gets.
  static std::string randomId() { return Oza::VestraSetting().getRandomId(); }
  static std::string randomIdForAnOrdinaryUser() { return asOrdinaryUser(randomId); }

  TemporaryDirectory home;
  ScopedEnv homeVariable{"HOME", home.path()};
  TimeLimit limit;
};

}  // namespace vestra_test

#endif
