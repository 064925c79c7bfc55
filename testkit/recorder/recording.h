#ifndef VESTRA_TESTKIT_RECORDER_RECORDING_H
#define VESTRA_TESTKIT_RECORDER_RECORDING_H

#include <ctime>
#include <optional>
#include <string_view>
#include <vector>

#include "intercept/intercept.h"

namespace vestra::testkit {

// The variables that tell the processes of a run where and how they are recorded.

inline constexpr char VARIABLE_PREFIX[] = "VESTRA_TESTKIT_";
/// The directory of the record.
inline constexpr char RECORD_VARIABLE[] = "VESTRA_TESTKIT_RECORD";
/// The object that is preloaded into every program.
inline constexpr char PRELOAD_VARIABLE[] = "VESTRA_TESTKIT_PRELOAD";
/// The support library's path; empty where there is to be none.
inline constexpr char SUPPORT_VARIABLE[] = "VESTRA_TESTKIT_SUPPORT";
/// Where the clock stands, in seconds since the epoch; unset while it runs.
inline constexpr char NOW_VARIABLE[] = "VESTRA_TESTKIT_NOW";

// What is recorded of the shell, in a file of records that begin with one of two words.

inline constexpr char SHELL_RECORD[] = "shell";
/// Then: number, command line, script and rules file of the design tool, sizes of what was
/// printed on standard output and error.
inline constexpr char BEGUN[] = "begun";
/// Then: number, status, the lab tool's log, sizes again.
inline constexpr char ENDED[] = "ended";

/// From now on, what this process and the programs that it starts ask of the library and of the
/// shell is recorded as the variables say. Without them, nothing is.
void beginRecording();

/// Where the clock stands; nothing while it runs.
std::optional<std::time_t> heldClock();

/// A number that no other call of the run has: its processes and threads make several at a time.
struct NumberText {
  operator std::string_view() const { return text; }

  /// Process and, from 1, count: "123-1".
  char text[32];
};

NumberText nextNumber();

/// Appends texts to a file of the record, in one write.
inline void note(const char* file, const std::vector<std::string_view>& fields) {
  intercept::note(file, fields.data(), fields.size());
}

/// Whether the library was called while nothing was recorded.
bool wasCalledUnrecorded();

}  // namespace vestra::testkit

#endif
