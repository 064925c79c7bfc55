#ifndef VESTRA_FILES_TEMPORARY_FILE_H
#define VESTRA_FILES_TEMPORARY_FILE_H

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>

#include "files/descriptor.h"

namespace Oza {

/// A new file in a target's directory, renamed to the target once it is complete. Its name is
/// `.vestra-`process identifier`-`counter`.new`. Names that exist are skipped (O_EXCL): hosts
/// in other containers or on other machines may have the same process identifier.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
class TemporaryFile {
 public:
  /// @param target  The path that it is renamed to. Outlives the object.
  /// @param mode    Less the process's umask.
  TemporaryFile(const std::string& target, mode_t mode);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  /// Removes the file unless it was renamed.
  ~TemporaryFile();

  /// Not open when the file could not be created.
  const Descriptor& file() const { return *descriptor; }

  bool renameToTarget();

 private:
  const std::string& targetPath;
  std::string path;
  std::optional<Descriptor> descriptor;
  bool isRenamed = false;
};

/// Removes the temporary files that killed processes have left in a directory: regular
/// files of exactly such a name whose st_mtime is more than an hour ago. Reads about the
/// first 500 names of the directory.
/// @param now  The time of the clock that sets the st_mtime of the directory's files.
void removeStaleTemporaryFiles(const std::string& directory, std::time_t now);

}  // namespace Oza

#endif
