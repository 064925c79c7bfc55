#pragma once

#include <chrono>

namespace vestra::design_tool {

/// How long a script may go on. A report of a million items needs a million commands.
struct Limits {
  int commands = 20'000'000;
  std::chrono::seconds time{60};
};

}  // namespace vestra::design_tool
