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
/// The entry points that the support library is to lack, separated by commas.
inline constexpr char MISSING_VARIABLE[] = "VESTRA_TESTKIT_MISSING";
/// Where the clock stands, in seconds since the epoch; unset while it runs.
inline constexpr char NOW_VARIABLE[] = "VESTRA_TESTKIT_NOW";

// What is recorded of the shell, in two files.

/// Number, TOOL for a start of the main design tool by the library, command line, report script and
/// rules file. What that start prints goes to a file that is called TOOL and its number.
inline constexpr char BEGUN_RECORD[] = "begun";
inline constexpr char TOOL[] = "tool-";
/// Number, status and the lab tool's log.
inline constexpr char ENDED_RECORD[] = "ended";

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

/// A number as text.
struct Digits {
  explicit Digits(unsigned int number);
  operator std::string_view() const { return text; }

  char text[16];
};

/// Appends texts to a file of the record, in one write.
inline void note(const char* file, const std::vector<std::string_view>& fields) {
  intercept::note(file, fields.data(), fields.size());
}

/// Whether the library was called while nothing was recorded.
bool wasCalledUnrecorded();

}  // namespace vestra::testkit

#endif
