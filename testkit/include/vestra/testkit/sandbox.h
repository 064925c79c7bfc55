#ifndef VESTRA_TESTKIT_SANDBOX_H
#define VESTRA_TESTKIT_SANDBOX_H

#include <chrono>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>
#include <vestra/vestra.h>

namespace vestra::testkit {

/// What the support library answers, and what is missing; nothing for its own default.
struct SupportAnswers {
  /// The command line of the main design tool; by default the stand-in.
  std::optional<std::string> execPath;
  /// The registration identifier.
  std::optional<std::string> registrationId;
  /// By default that of a machine that does not exist.
  std::optional<std::string> environment;
  /// Those that are null instead: any of "exec_path", "regid", "environment".
  std::vector<std::string> null;
  /// What is not there: "library", the support library; "exec_path", "regid",
  /// "environment", its entry point for the answer; "tool", the main design tool.
  std::vector<std::string> missing;
  /// How long the main design tool waits before it begins.
  std::chrono::milliseconds toolDelay{0};
  /// The status that the main design tool ends with, without doing anything else.
  std::optional<int> toolStatus;
};

/// A home, a project and an outbox of their own in a temporary directory, with the
/// stand-ins for the support library and the main design tool. The real ones are
/// out of reach from inside, for whatever a run starts too.
///
/// The library keeps one state for each process. So each run forks a process of its
/// own, executes the host's code there and brings back what it left. The process that
/// owns the sandbox must not call the library itself, or a run would inherit what it
/// left behind, and must have no other threads; a run says so otherwise. Assertions of
/// GoogleTest that fail in the host's code fail the test where
/// <vestra/testkit/matchers.h> is included; elsewhere the run throws.
///
/// Programs that link the library name the test kit first, or the constructor throws.
///
/// All members throw std::runtime_error when the sandbox itself cannot do its work.
class VESTRA_TESTKIT_EXPORT Sandbox {
 public:
  Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;
  /// Removes the directory with all that is in it. After a failed expectation of the
  /// current test, or when the environment variable VESTRA_TESTKIT_KEEP is not empty,
  /// leaves it and prints its path on standard error; of failed tests, the last ten are
  /// kept. What a killed test left behind is removed with the user's next sandbox.
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

  /// Executes a program, the shipped host for example, in the sandbox's environment and
  /// with `directory()` as its current directory. An object that is preloaded into it and into
  /// all that it starts records it, so it must load the library from a file of its own. A
  /// process that cannot be recorded makes the run unsound: one that is set-user-ID or static, or
  /// that was started with an environment of its own.
  ///
  /// @param words  the program and its arguments. A name with a slash in it is looked up
  ///               from the current directory of the caller, any other in PATH.
  HostRun runProgram(const std::vector<std::string>& words);

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
  /// How long a host may run, by the clock; 10 minutes unless set, which no busy machine needs.
  void setTimeLimit(std::chrono::milliseconds limit);

  // With these and fixed answers, two runs leave the same bytes, but for the path of the
  // sandbox: compare them as `withoutDirectory` gives them.

  /// Holds the clock of the runs that follow, and their time zone at UTC. Clocks that
  /// only measure go on. A run throws where another preloaded object tells the time.
  ///
  /// @param now  seconds since the epoch
  void setNow(std::time_t now);
  /// Gives the user and the project the identifiers that a first run would draw.
  ///
  /// @param installation  the "random_id" of the report
  /// @param project       its "project_id", unless the host supplies one
  void setIdentifiers(const std::string& installation, const std::string& project);
  /// The text with "SANDBOX" wherever it names `directory()`.
  std::string withoutDirectory(const std::string& text) const;

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
/// What records a program that a sandbox executes, likewise.
VESTRA_TESTKIT_EXPORT std::string preloadPath();

}  // namespace vestra::testkit

#endif
