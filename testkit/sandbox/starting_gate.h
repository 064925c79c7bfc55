#ifndef VESTRA_TESTKIT_SANDBOX_STARTING_GATE_H
#define VESTRA_TESTKIT_SANDBOX_STARTING_GATE_H

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace vestra::testkit {

/// Ends every waiting process's wait at one moment: a pipe whose writing end nobody keeps.
class StartingGate {
 public:
  StartingGate() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::runtime_error("the sandbox cannot make a pipe");
    }
  }
  StartingGate(const StartingGate&) = delete;
  StartingGate& operator=(const StartingGate&) = delete;
  ~StartingGate() {
    open();
    close(ends[0]);
  }

  /// In the process that starts the others.
  void open() {
    if (ends[1] >= 0) {
      close(ends[1]);
      ends[1] = -1;
    }
  }

  /// In each of the others.
  void await() {
    open();
    char nothing = 0;
    while (read(ends[0], &nothing, 1) < 0) {
    }
  }

 private:
  std::array<int, 2> ends{-1, -1};
};

}  // namespace vestra::testkit

#endif
