#ifndef VESTRA_TESTS_SUPPORT_SCENARIO_RECORDING_TOOL_H
#define VESTRA_TESTS_SUPPORT_SCENARIO_RECORDING_TOOL_H

#include <string>
#include <vector>

namespace vestra_test {

/// What the recording tool saw when it was started once.
struct Invocation {
  std::vector<std::string> arguments;
  std::string workingDirectory;
  /// Names in the project's vestra directory, sorted.
  std::vector<std::string> files;
  std::string script;
  std::string rules;
};

/// A main design tool that reports nothing and writes down how it was started: a
/// shell script of its own in `directory`.
class RecordingTool {
 public:
  /// @param vestraDirectory  Where it looks around.
  /// @param ending           Shell commands at its end, such as "exit 1".
  RecordingTool(const std::string& directory, const std::string& vestraDirectory,
                const std::string& ending = "");

  /// What the support library is to answer.
  const std::string& command() const { return tool; }
  /// In the order in which the tool was started.
  std::vector<Invocation> invocations() const;

 private:
  std::string records;
  std::string tool;
};

}  // namespace vestra_test

#endif
