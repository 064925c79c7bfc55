#ifndef VESTRA_TESTS_INSPECT_DAMAGE_H
#define VESTRA_TESTS_INSPECT_DAMAGE_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "inspect/place.h"

namespace vestra_test {

/// One row of a table of damages in docs/file-formats.md.
struct Damage {
  /// The test's name.
  std::string name;
  /// The row's first cell.
  std::string row;
  /// The finding that tells it.
  std::string finding;
  std::function<void(Place&)> make;
  std::string product = "KELVO";
};

std::ostream& operator<<(std::ostream& out, const Damage& damage);

/// Every row whose damage can be made without a file system of one's own, most with several
/// examples.
const std::vector<Damage>& damages();

}  // namespace vestra_test

#endif
