#ifndef VESTRA_TESTS_SUPPORT_PROCESS_H
#define VESTRA_TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace vestra_test {

/// A program, which is a path or found by PATH, and its arguments.
using Command = std::vector<std::string>;

/// What a program left when it ended.
struct Outcome {
  /// The exit status; 128 and the signal's number when a signal ended it, as shells have it.
  int status = 0;
  std::string out;
  std::string err;
};

/// The descriptors that a program gets as its standard streams.
struct Streams {
  int in = 0;
  int out = 1;
  int err = 2;
};

/// Starts a program.
///
/// @param environment  Further `NAME=value` entries. A variable that names the design tool's
///                     outbox is not inherited.
/// @param directory    Where it runs; empty for the current directory.
/// @throws std::system_error when it cannot be started.
pid_t start(const Command& command, const Streams& streams = {},
            const std::vector<std::string>& environment = {}, const std::string& directory = "");

/// Waits for a process's end and gives its status, as in `Outcome`.
int waitFor(pid_t process);

/// Runs a program to its end, with nothing on its standard input.
///
/// @param environment  As for `start`.
/// @param directory    As for `start`.
/// @throws std::system_error when it cannot be started.
Outcome run(const Command& command, const std::vector<std::string>& environment = {},
            const std::string& directory = "");

/// Whether PATH knows the program.
bool isInstalled(const std::string& program);

}  // namespace vestra_test

#endif
