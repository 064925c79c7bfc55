#ifndef VESTRA_BENCH_WORKPLACE_H
#define VESTRA_BENCH_WORKPLACE_H

#include <string>

#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace vestra_bench {

/// Whether a project's next report is due.
enum class Report { NOT_DUE, DUE };

/// A user's home with known settings, a project, and the stand-in support library on the
/// loader's path, with answers that take no time, for the programs that are started. The
/// main design tool is `true`.
class Workplace {
 public:
  Workplace();

  const std::string& project() const { return projectDirectory.path(); }

  /// Has a host report that many items and keeps its files.
  void makeReport(std::size_t items);

  /// Restores the project's files as they were after `makeReport`, with an identity
  /// whose next report is due or not.
  void restore(Report report) const;

  std::string scriptFile() const;

  /// Size of the report script.
  std::size_t scriptBytes() const { return script.size(); }

 private:
  std::string inProject(const std::string& name) const;

  vestra_test::TemporaryDirectory home;
  vestra_test::TemporaryDirectory projectDirectory;
  vestra_test::ScopedEnv homeVariable;
  vestra_test::ScopedEnv loaderPath;
  vestra_test::ScopedEnv tool;
  vestra_test::ScopedEnv registration;
  vestra_test::ScopedEnv environment;
  std::string script;
  std::string rules;
};

}  // namespace vestra_bench

#endif
