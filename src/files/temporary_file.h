#ifndef VESTRA_FILES_TEMPORARY_FILE_H
#define VESTRA_FILES_TEMPORARY_FILE_H

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>

#include "files/descriptor.h"

namespace Oza {

/// A new file in another one's directory, which it is renamed over once it is complete.
/// Its name is `.vestra-`process identifier`-`counter`.new`. Names that are taken, by a host
/// in another container or on another machine too, are passed over.
class TemporaryFile {
 public:
  /// @param target  The path that it is renamed to. Outlives the object.
  /// @param mode    Less the process's umask.
  TemporaryFile(const std::string& target, mode_t mode);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  /// Removes the file unless it was renamed.
  ~TemporaryFile();

  /// Not open when the directory lets no file be made.
  const Descriptor& file() const { return *descriptor; }

  bool renameToTarget();

 private:
  const std::string& targetPath;
  std::string path;
  std::optional<Descriptor> descriptor;
  bool isRenamed = false;
};

/// Removes the temporary files that killed processes have left in a directory: regular
/// files of exactly such a name that were written more than an hour ago. Looks through
/// about the directory's first 500 names.
/// @param now  By the clock that dates the directory's files.
void removeStaleTemporaryFiles(const std::string& directory, std::time_t now);

}  // namespace Oza

#endif
