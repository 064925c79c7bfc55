#ifndef VESTRA_INSPECT_REHEARSE_VARIABLES_H
#define VESTRA_INSPECT_REHEARSE_VARIABLES_H

namespace vestra::inspect {

// What the processes of a rehearsal are told by, in the environment.

inline constexpr char VARIABLE_PREFIX[] = "VESTRA_REHEARSAL_";
/// The directory that reports are written in.
inline constexpr char RECORD_VARIABLE[] = "VESTRA_REHEARSAL_RECORD";
/// The object that is preloaded.
inline constexpr char PRELOAD_VARIABLE[] = "VESTRA_REHEARSAL_PRELOAD";
/// The support library that the loader finds without a search path; unset where it finds none.
inline constexpr char SUPPORT_VARIABLE[] = "VESTRA_REHEARSAL_SUPPORT";
/// The command that takes the main design tool's place.
inline constexpr char TOOL_VARIABLE[] = "VESTRA_REHEARSAL_TOOL";
/// Milliseconds that one report may take, and what a program leaves running; 30 seconds without it.
inline constexpr char LIMIT_VARIABLE[] = "VESTRA_REHEARSAL_LIMIT";

inline constexpr int DEFAULT_LIMIT = 30000;

// The files of the folder of one report.

/// The project.
inline constexpr char DIRECTORY_FILE[] = "directory";
/// The fingerprint of its identity file before.
inline constexpr char BEFORE_FILE[] = "before";
/// How `send` ended: "t", "f", or "l" or "r" and the text of a logic or runtime error.
inline constexpr char ANSWER_FILE[] = "answer";
/// What the shell would have been given.
inline constexpr char COMMAND_FILE[] = "command";
/// The script of a report that reached the place of the main design tool: nothing intercepted it.
inline constexpr char LEAK_FILE[] = "leak";

}  // namespace vestra::inspect

#endif
