#ifndef VESTRA_TESTS_HANDLER_REPORT_FIXTURE_H
#define VESTRA_TESTS_HANDLER_REPORT_FIXTURE_H

#include "identity/project_fixture.h"
#include "support/stand_in/stand_in_library.h"

namespace vestra_test {

/// A project with a support library, at 22:13:20 on day 318 of 2023. The domain name cannot be
/// told, so that the site is external.
class ReportFixture : public ProjectFixture {
 protected:
  void add(const std::string& key, const std::string& value, Oza::Vestra::SectionType section) {
    handler.addData(key, value, section);
  }

  std::string inVestraDirectory(const std::string& name) const { return project / "vestra/" + name; }
  std::string script() const { return readFile(inVestraDirectory("kelvo_vestra.tcl")); }

  /// Prepares and gives the script.
  std::string preparedScript() {
    EXPECT_TRUE(handler.prepareVestraData());
    return script();
  }

  StandInLibrary library;
  ScopedEnv zone{"TZ", "UTC"};
};

}  // namespace vestra_test

#endif
