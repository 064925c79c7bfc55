#ifndef VESTRA_TESTKIT_SANDBOX_STARTING_GATE_H
#define VESTRA_TESTKIT_SANDBOX_STARTING_GATE_H

#include <array>

namespace vestra::testkit {

/// Ends every waiting process's wait at one moment.
class StartingGate {
 public:
  StartingGate();
  StartingGate(const StartingGate&) = delete;
  StartingGate& operator=(const StartingGate&) = delete;
  ~StartingGate();

  /// In the process that starts the others.
  void open();

  /// In each of the others.
  void await();

 private:
  std::array<int, 2> ends{-1, -1};
};

}  // namespace vestra::testkit

#endif
