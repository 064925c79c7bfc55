#ifndef VESTRA_TESTKIT_RECORDER_RECORDING_H
#define VESTRA_TESTKIT_RECORDER_RECORDING_H

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vestra::testkit {

// The names of the variables that tell a program that is executed what it is told as a
// function here.

/// Where to record: see beginRecording.
constexpr const char* RECORD_VARIABLE = "VESTRA_TESTKIT_RECORD";
/// The time to hold the clock at: see holdClock.
constexpr const char* NOW_VARIABLE = "VESTRA_TESTKIT_NOW";

// What is recorded of the shell, in a file of records that begin with one of two words.

constexpr const char* SHELL_RECORD = "shell";
/// Then: number, command line, script and rules file of the design tool, sizes of what was
/// printed on standard output and error.
constexpr const char* BEGUN = "begun";
/// Then: number, status, the lab tool's log, sizes again.
constexpr const char* ENDED = "ended";

/// From now on, what this process asks of the library and of the shell is written down
/// below `directory`.
void beginRecording(const std::string& directory);

/// Where that is; empty while nothing is recorded.
const std::string& recordDirectory();

/// From now on, this process's clock stands still.
///
/// @param now  seconds since the epoch
void holdClock(std::time_t now);

/// Where the clock stands; nothing while it runs.
std::optional<std::time_t> heldClock();

/// A number that no other call of the run has: its processes and threads make several at a time.
std::string nextNumber();

/// Appends texts to a file of the record, in one piece.
///
/// @param name  of the file
void note(const char* name, const std::vector<std::string_view>& fields);

/// Whether the library was called while nothing was recorded.
bool wasCalledUnrecorded();

}  // namespace vestra::testkit

#endif
