#ifndef VESTRA_INSPECT_REHEARSE_FINGERPRINT_H
#define VESTRA_INSPECT_REHEARSE_FINGERPRINT_H

#include <sys/stat.h>

#include <string>

namespace vestra::inspect {

/// What tells whether a file, or the file that a link leads to, was written, replaced or removed.
inline std::string fingerprintOf(const std::string& path) {
  std::string text;
  for (const auto look : {lstat, stat}) {
    struct stat status {};
    if (look(path.c_str(), &status) != 0) {
      return text + "missing";
    }
    for (const auto number :
         {static_cast<long long>(status.st_ino), static_cast<long long>(status.st_mode),
          static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
          static_cast<long long>(status.st_mtim.tv_nsec)}) {
      text += std::to_string(number) + " ";
    }
  }
  return text;
}

}  // namespace vestra::inspect

#endif
