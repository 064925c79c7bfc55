#ifndef VESTRA_TESTS_IDENTITY_SETTINGS_FIXTURE_H
#define VESTRA_TESTS_IDENTITY_SETTINGS_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "support/files.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace vestra_test {

/// A home directory for the settings file. Nothing may wait here.
class SettingsFixture : public testing::Test {
 protected:
  std::string file() const { return home / ".Calvix/Common/2018.2/vestra"; }
  void writeSettings(const std::string& bytes) const { writeFile(file(), bytes); }
  std::string settings() const { return readFile(file()); }

  TemporaryDirectory home;
  ScopedEnv homeVariable{"HOME", home.path()};
  TimeLimit limit;
};

}  // namespace vestra_test

#endif
