#include "sandbox/starting_gate.h"

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

namespace vestra::testkit {

StartingGate::StartingGate() {
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("the sandbox cannot make a pipe");
  }
}

StartingGate::~StartingGate() {
  open();
  close(ends[0]);
}

void StartingGate::open() {
  if (ends[1] >= 0) {
    close(ends[1]);
    ends[1] = -1;
  }
}

void StartingGate::await() {
  open();
  char nothing = 0;
  while (read(ends[0], &nothing, 1) < 0) {
  }
}

}  // namespace vestra::testkit
