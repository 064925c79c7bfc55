#ifndef VESTRA_INTERCEPT_INTERCEPT_H
#define VESTRA_INTERCEPT_INTERCEPT_H

#include <climits>
#include <cstddef>
#include <initializer_list>
#include <string_view>

// Interposes the calls that lead from a host to its support library and to other programs. It is
// linked into an object that is preloaded and therefore loaded by every program of a run, shells
// included: it needs the C library only, since loading the C++ library would cost each of them a
// millisecond. Whoever links it defines the functions of the last part.

#define VESTRA_INTERPOSED __attribute__((visibility("default")))

namespace vestra::intercept {

// The environment.

/// From now on, every program that this process starts gets the environment variables that begin
/// with `prefix`, even where the process clears its environment, and the objects that the variable
/// `prefix`PRELOAD names, separated by colons, at the front of LD_PRELOAD.
void carryEnvironment(const char* prefix);

/// A carried variable's value; null without one.
///
/// @param name  behind the prefix
const char* carried(std::string_view name);

/// From `environ`, without a call of the C library: usable before it is initialised.
const char* variable(const char* name);

// The record.

/// From now on, events are recorded in files of the directory. The text must outlive the process.
void recordIn(const char* directory);

/// Null while nothing is recorded.
const char* recordDirectory();

/// Appends texts, each behind its length, to a file of the record, in one write.
/// @{
void note(const char* file, const std::string_view* fields, std::size_t count);
inline void note(const char* file, std::initializer_list<std::string_view> fields) {
  note(file, fields.begin(), fields.size());
}
/// @}

/// The file of programs that were started without the preloaded objects, or with an environment
/// that lacked the carried variables: path and reason.
inline constexpr char UNOBSERVED_RECORD[] = "unobserved";
/// The second of these reasons.
inline constexpr char OWN_ENVIRONMENT[] = "was started with an environment of its own";

/// Which file the loader would not put preloaded objects before, and why.
struct Unobservable {
  /// Null for a program that can be observed, and where there is none.
  const char* reason = nullptr;
  /// The program or, for a script, its interpreter.
  char path[PATH_MAX] = {};
};

Unobservable judgeProgram(const char* path);

// The library.

/// The library's own function behind the one that is defined in this object; null without one.
///
/// @param symbol  its mangled name
void* ownOf(const char* symbol);

/// The file that holds an address; null when none does.
const void* objectOf(const void* address);

/// dlsym of the C library.
void* lookUp(void* handle, const char* symbol);

/// A function that hosts are to get in the place of the library's own, also where they open the
/// library and look it up by name.
struct EntryPoint {
  const char* symbol;
  void* replacement;
  /// What the host's last look-up by name found; null before.
  void* own;
};

inline constexpr char SUPPORT_LIBRARY[] = "libqvzcommonvestrasupport.so";

// To be defined.

/// Ends with a null symbol.
extern EntryPoint entryPoints[];

/// The file to open where the support library is asked for: a path, the name itself, or null where
/// there is to be none.
///
/// @param caller  an address in the object that asks
const char* supportLibraryFor(const void* caller);

/// Whether a look-up in the support library is to find nothing.
bool isMissing(const char* symbol);

/// In the place of `system`.
///
/// @param next  the C library's
int runCommand(const char* command, int (*next)(const char*));

}  // namespace vestra::intercept

#endif
