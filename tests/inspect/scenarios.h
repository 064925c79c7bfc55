#ifndef VESTRA_TESTS_INSPECT_SCENARIOS_H
#define VESTRA_TESTS_INSPECT_SCENARIOS_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "inspect/place.h"

namespace vestra_test {

/// Something to look at, and what the command line adds for it.
struct Scenario {
  /// The test's name.
  std::string name;
  std::function<void(Place&)> make;
  /// `@` stands for the place's directory for other things.
  Words words;
};

std::ostream& operator<<(std::ostream& out, const Scenario& scenario);

/// Every damage, and what else there is in homes, projects, environments and on command lines.
const std::vector<Scenario>& scenarios();

/// The command and the scenario's words.
Words wordsFor(const std::string& command, const Scenario& scenario, const Place& place);

}  // namespace vestra_test

#endif
