#ifndef VESTRA_TESTKIT_SANDBOX_RUN_SETUP_H
#define VESTRA_TESTKIT_SANDBOX_RUN_SETUP_H

#include <chrono>
#include <ctime>
#include <map>
#include <optional>
#include <string>

#include <vestra/testkit/sandbox.h>

namespace vestra::testkit {

/// What a sandbox was told about the runs that follow.
struct RunSetup {
  SupportAnswers answers;
  /// Those without a value are unset.
  std::map<std::string, std::optional<std::string>> environment;
  std::chrono::milliseconds timeLimit = std::chrono::minutes(10);
  std::optional<std::time_t> now;
};

/// Where one run finds and leaves what is its own.
struct RunPlace {
  /// The sandbox's directory.
  std::string directory;
  /// Where it is recorded.
  std::string record;
  /// Where the stand-in design tool keeps its reports.
  std::string outbox;
  /// Whether the host is a program that is executed, which leaves no answer of its own.
  bool isProgram = false;
};

}  // namespace vestra::testkit

#endif
