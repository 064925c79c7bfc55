#ifndef VESTRA_TESTS_IDENTITY_PROJECT_FIXTURE_H
#define VESTRA_TESTS_IDENTITY_PROJECT_FIXTURE_H

#include "handler/vestra_handler.h"
#include "identity/vestra_project_info.h"
#include "support/interposed/c_library.h"
#include "support/test.h"

namespace vestra_test {

/// A project, a handler for it and a clock at 1700000000. Nothing may wait here.
class ProjectFixture : public testing::Test {
 protected:
  ProjectFixture() { handler.setProjectDirectory(project.path()); }

  std::string file() const { return project / "vestra/.kelvo_vestrra.info"; }
  void writeIdentity(const std::string& bytes) const { writeFile(file(), bytes); }
  std::string identity() const { return readFile(file()); }

  TemporaryDirectory project;
  Oza::VestraHandler handler;
  ScopedTime now{1700000000};
  TimeLimit limit;
};

}  // namespace vestra_test

#endif
