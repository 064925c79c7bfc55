#ifndef VESTRA_TESTKIT_SANDBOX_H
#define VESTRA_TESTKIT_SANDBOX_H

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>
#include <vestra/vestra.h>

namespace vestra::testkit {

/// What the support library answers; nothing for its own default.
struct SupportAnswers {
  /// The command line of the main design tool; by default the stand-in.
  std::optional<std::string> execPath;
  /// The registration identifier.
  std::optional<std::string> registrationId;
  /// By default a description of this machine.
  std::optional<std::string> environment;
  /// Those that are null instead: any of "exec_path", "regid", "environment".
  std::vector<std::string> null;
};

/// A home, a project and an outbox of their own in a temporary directory, with the
/// stand-ins for the support library and the main design tool. The real ones are
/// out of reach from inside.
///
/// The library keeps one state for each process. So each run forks a process of its
/// own, executes the host's code there and brings back what it left; the process
/// that owns the sandbox must not call the library itself, or a run would inherit
/// what it left behind. Fork from a process without other threads.
///
/// All members throw std::runtime_error when the sandbox itself cannot do its work.
class VESTRA_TESTKIT_EXPORT Sandbox {
 public:
  Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;
  /// Removes the directory with all that is in it.
  ~Sandbox();

  /// Executes `host` and then `Oza::Vestra::send` for this sandbox's project, in a
  /// process of its own, which leaves through `std::exit` as a host does. Its
  /// current directory is `directory()`.
  HostRun run(Oza::Vestra::ProductType product, const std::function<void()>& host);

  /// Executes code that calls `send` itself, once or more often. What it returns is
  /// the run's answer.
  HostRun runProcess(const std::function<bool()>& code);

  /// Executes `code` in `count` processes that start at one moment. Each is told
  /// its number, from 0.
  std::vector<HostRun> runTogether(int count, const std::function<bool(int)>& code);

  /// Moves the project's past: its last reports were sent that much earlier. Does
  /// nothing where none was.
  void age(std::chrono::seconds by);
  /// As much as makes the next report due.
  void ageUntilDue();

  /// The answers for the runs that follow.
  void setSupportAnswers(SupportAnswers answers);
  /// Sets, or without a value unsets, an environment variable of the runs that
  /// follow. HOME is `home()` unless it is set here.
  void setEnvironment(const std::string& name, const std::optional<std::string>& value);
  /// How long a run may take; 60 seconds unless set.
  void setTimeLimit(std::chrono::milliseconds limit);

  // Absolute paths, without links in them and without a final slash.

  /// What holds all the others, and is removed with the sandbox.
  const std::string& directory() const;
  /// The home of the user who runs the host.
  std::string home() const;
  /// Made by the sandbox; the library makes the "vestra" directory in it.
  std::string project() const;
  /// Where the stand-in design tool keeps its reports.
  std::string outbox() const;
  /// Where the library keeps the user's settings, there or not.
  std::string settingsFile() const;
  /// Where the library keeps the project's identity, there or not.
  std::string identityFile() const;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation;
};

/// The stand-in support library, where it was installed or built.
VESTRA_TESTKIT_EXPORT std::string supportLibraryPath();
/// The stand-in design tool, likewise.
VESTRA_TESTKIT_EXPORT std::string designToolPath();

}  // namespace vestra::testkit

#endif
