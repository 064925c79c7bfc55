#ifndef VESTRA_INSPECT_FACTS_FILE_SNAPSHOT_H
#define VESTRA_INSPECT_FACTS_FILE_SNAPSHOT_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vestra::inspect {

/// More of a file is not read: no report is as large.
inline constexpr std::size_t LARGEST_FILE = std::size_t{256} << 20U;

/// The library takes an identity file and the settings to end there.
inline constexpr std::size_t LARGEST_RECORD = std::size_t{1} << 20U;

enum class FileKind { missing, regular, directory, pipe, socket, device, unknown };

/// What stands at a path, links followed.
struct FileSnapshot {
  std::string path;
  FileKind kind = FileKind::missing;
  /// Why nothing is known; 0 for what exists and for what is simply missing.
  int error = 0;
  /// Where a link at the path leads; nothing when it is none.
  std::optional<std::string> link;
  mode_t mode = 0;
  uid_t owner = 0;
  std::int64_t size = 0;
  /// Seconds since the epoch.
  std::int64_t modified = 0;
  /// What of that second had passed.
  std::int64_t modifiedNanoseconds = 0;
  /// Whether the effective user may write and read there.
  bool writable = false;
  bool readable = false;
  /// Its bytes, where they were asked for and could be read.
  std::optional<std::string> text;
  /// Why it could not be opened or read; 0 without a failure.
  int readError = 0;

  bool exists() const { return kind != FileKind::missing && kind != FileKind::unknown; }
  bool isRegular() const { return kind == FileKind::regular; }
  /// Whether it was written after a moment that a host took from its clock, in seconds since
  /// the epoch.
  bool isYoungerThan(std::int64_t moment) const;
  /// Whether it is there and the kernel did not let it be opened for reading.
  bool isUnreadable() const;
};

/// Looks without opening anything.
FileSnapshot lookAt(const std::string& path);

/// Looks, and reads the bytes of a regular file.
/// @param limit  How many of them at most.
FileSnapshot readFileAt(const std::string& path, std::size_t limit = LARGEST_FILE);

/// Opens a file for reading without changing its access time, without waiting and
/// without taking a terminal. @return The descriptor; -1 on failure, with errno.
int openToLook(const std::string& path);

/// The directory of a path; "." without one.
std::string parentOf(const std::string& path);

/// Whether a file can be created where a link leads that points to nothing: the library creates no
/// directories for it.
bool canCreateTarget(const FileSnapshot& link);

/// Whether the effective user could make or remove files in the directory.
bool mayChangeDirectory(const std::string& directory);

/// Whether a directory can be made at the path, its parents included, or is there and
/// files can be made in it. @param obstacle  Otherwise the path of what is in the way.
bool canHoldFiles(const std::string& directory, std::string& obstacle);

/// Whether a file can be taken away: missing counts as such.
bool canBeRemoved(const std::string& path);

/// "regular", "directory", ...
const char* nameOf(FileKind kind);

/// As ls writes it: "0644".
std::string modeText(mode_t mode);

}  // namespace vestra::inspect

#endif
