#ifndef VESTRA_TESTS_HANDLER_REPORT_FIXTURE_H
#define VESTRA_TESTS_HANDLER_REPORT_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "handler/vestra_handler.h"
#include "support/files.h"
#include "support/interposed/clock.h"
#include "support/scoped_env.h"
#include "support/stand_in/stand_in_library.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace vestra_test {

/// A project, a handler for it, a support library, and a clock at 22:13:20 on day
/// 318 of 2023. The domain name cannot be told, so that the site is external.
class ReportFixture : public testing::Test {
 protected:
  ReportFixture() { handler.setProjectDirectory(project.path()); }

  void add(const std::string& key, const std::string& value, Oza::Vestra::SectionType section) {
    handler.addData(key, value, section);
  }

  std::string inVestraDirectory(const std::string& name) const { return project.path() + "/vestra/" + name; }
  void writeIdentity(const std::string& bytes) const {
    writeFile(inVestraDirectory(".kelvo_vestrra.info"), bytes);
  }
  std::string identity() const { return readFile(inVestraDirectory(".kelvo_vestrra.info")); }
  std::string script() const { return readFile(inVestraDirectory("kelvo_vestra.tcl")); }

  /// Prepares and gives the script.
  std::string preparedScript() {
    EXPECT_TRUE(handler.prepareVestraData());
    return script();
  }

  /// The script's items of a context, one "key=value" to a line.
  std::string itemsOf(const std::string& context) const;

  TemporaryDirectory project;
  StandInLibrary library;
  Oza::VestraHandler handler;
  ScopedTime now{1700000000};
  ScopedEnv zone{"TZ", "UTC"};
  TimeLimit limit;
};

}  // namespace vestra_test

#endif
