#ifndef VESTRA_TESTS_INSPECT_STATES_H
#define VESTRA_TESTS_INSPECT_STATES_H

#include <functional>
#include <string>
#include <vector>

#include "inspect/place.h"

namespace vestra_test {

/// What a home, a project and an environment can be in when somebody looks.
struct State {
  std::string name;
  std::function<void(Place&)> make;
  /// A finding that is expected; empty for none in particular.
  std::string finding;
  std::string product = "KELVO";
  /// What no redacted output may hold.
  Words secrets = {};
  /// The row of a table of corruptions in docs/file-formats.md that it is an example of.
  std::string row = {};
  /// Whether a host may be run in it: not where it would write outside of the place.
  bool isRun = true;
};

// The table, by what is unusual.

std::vector<State> settingsStates();
std::vector<State> identityStates();
std::vector<State> reportStates();
/// Each kind of file, and each mode, in the place of each file and directory.
std::vector<State> fileKindStates();
std::vector<State> modeStates();
std::vector<State> supportStates();
std::vector<State> environmentStates();

}  // namespace vestra_test

#endif
