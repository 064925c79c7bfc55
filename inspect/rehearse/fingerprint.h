#ifndef VESTRA_INSPECT_REHEARSE_FINGERPRINT_H
#define VESTRA_INSPECT_REHEARSE_FINGERPRINT_H

#include <sys/stat.h>

#include <string>

namespace vestra::inspect {

/// What tells whether a file was written, exchanged or removed meanwhile.
inline std::string fingerprintOf(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) {
    return "missing";
  }
  std::string text;
  for (const auto number :
       {static_cast<long long>(status.st_ino), static_cast<long long>(status.st_mode),
        static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
        static_cast<long long>(status.st_mtim.tv_nsec)}) {
    text += std::to_string(number) + " ";
  }
  return text;
}

// What the pieces of a rehearsal tell each other by, in the environment.

/// The rehearsal's directory.
inline constexpr char DIRECTORY_VARIABLE[] = "VESTRA_REHEARSAL";
/// The part of it that goes at the end.
inline constexpr char PRIVATE_DIRECTORY[] = "/private";
/// Milliseconds that one report may take; 30 seconds without it.
inline constexpr char LIMIT_VARIABLE[] = "VESTRA_REHEARSAL_LIMIT";
/// Path of the support library that the program would get.
inline constexpr char SUPPORT_VARIABLE[] = "VESTRA_REHEARSAL_SUPPORT";
/// The command that stands for the main design tool where the shim was lost.
inline constexpr char CAUGHT_VARIABLE[] = "VESTRA_REHEARSAL_CAUGHT";
/// A function of the shim, by which the support library sees that it is there.
inline constexpr char SHIM_MARK[] = "vestra_rehearsal_shim";

}  // namespace vestra::inspect

#endif
