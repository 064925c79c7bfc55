#ifndef VESTRA_FILES_DESCRIPTOR_H
#define VESTRA_FILES_DESCRIPTOR_H

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>

#include "files/time_budget.h"

namespace Oza {

/// An open file, closed at the object's end. No program that the process starts inherits
/// it, and opening it never blocks on a named pipe.
class Descriptor {
 public:
  /// @param flags  Those of open(2).
  /// @param mode   The permissions of a file that is made, less the process's umask.
  Descriptor(const std::string& path, int flags, mode_t mode = DEFAULT_MODE);
  /// The same. While another process holds a lease on the file, opening fails with EAGAIN
  /// and is tried again until the time budget is used up.
  Descriptor(const std::string& path, int flags, TimeBudget& timeBudget);
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  bool isOpen() const { return number >= 0; }
  int get() const { return number; }
  /// Why it could not be opened, as an errno value; 0 for an open file.
  int error() const { return errorAtOpening; }
  /// The file's status when it was opened; all zeros where it cannot be told.
  const struct stat& status() const { return statusAtOpening; }
  bool hasStatus() const { return statusAtOpening.st_mode != 0; }
  bool isRegular() const { return S_ISREG(statusAtOpening.st_mode); }

  /// What the file holds from its beginning, read without moving its position. Nothing
  /// for a file that is not regular and after a read error. A file is taken to end after
  /// its first MOST_BYTES_READ bytes.
  std::optional<std::string> read() const;
  static constexpr std::size_t MOST_BYTES_READ = 1U << 20U;

  /// Writes a text at an offset.
  /// @return How much of it was written: all of it, or what there was room for.
  std::size_t write(const std::string& text, std::size_t offset = 0) const;
  /// Appends a text to a file that was opened with O_APPEND.
  void append(const std::string& text) const;

 private:
  static constexpr mode_t DEFAULT_MODE = 0666;

  void open(const std::string& path, int flags, mode_t mode);

  int number = -1;
  int errorAtOpening = 0;
  struct stat statusAtOpening {};
};

}  // namespace Oza

#endif
