#ifndef VESTRA_TESTS_SUPPORT_STAND_IN_STAND_IN_LIBRARY_H
#define VESTRA_TESTS_SUPPORT_STAND_IN_STAND_IN_LIBRARY_H

#include <optional>
#include <string>

namespace vestra_test {

/// Makes a support library available under its real name for the life of this
/// object: for that name the loader gives the library that is in the process
/// already. At the end it is unloaded, whatever references there are.
class StandInLibrary {
 public:
  /// @param variant  "whole", "no_exec_path", "no_regid" or "no_environment".
  explicit StandInLibrary(const std::string& variant = "whole");
  StandInLibrary(const StandInLibrary&) = delete;
  StandInLibrary& operator=(const StandInLibrary&) = delete;
  ~StandInLibrary();

  // What it answers; nothing is null. At first it names the tool "/bin/true", the
  // registration "REG-1" and the environment "a#1#b#2#c#3#d#4#e#5#f#6".

  void nameTool(const std::optional<std::string>& command);
  void nameRegistration(const std::optional<std::string>& identifier);
  void describeEnvironment(const std::optional<std::string>& text);

  /// The calls so far, one line for each: "symbol(argument)".
  std::string calls() const;

  /// Whether the library stays in the process when this object lets go of it, which
  /// it does here.
  bool isHeldByAnother();

 private:
  void answer(const char* variable, std::optional<std::string>& kept, const std::optional<std::string>& text);

  void* handle;
  std::optional<std::string> tool;
  std::optional<std::string> registration;
  std::optional<std::string> environment;
};

}  // namespace vestra_test

#endif
