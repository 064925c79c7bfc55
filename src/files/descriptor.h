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
  /// @param mode   The permissions of a file that O_CREAT creates, less the process's umask.
  Descriptor(const std::string& path, int flags, mode_t mode = DEFAULT_MODE);
  /// The same, without permissions for a new file. While another process holds a lease on
  /// the file, open(2) fails with EAGAIN: it is repeated until the time budget is used up.
  Descriptor(const std::string& path, int flags, TimeBudget& timeBudget);
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  bool isOpen() const { return number >= 0; }
  int get() const { return number; }
  /// The errno value of the failed open(2); 0 for an open file.
  int error() const { return errorAtOpening; }
  /// What fstat(2) said when the file was opened; all zeros if it failed.
  const struct stat& status() const { return statusAtOpening; }
  bool isRegular() const { return S_ISREG(statusAtOpening.st_mode); }
  /// Whether it is open and no named pipe.
  bool canHoldText() const { return statusAtOpening.st_mode != 0 && !S_ISFIFO(statusAtOpening.st_mode); }

  /// What the file holds from its beginning, read without moving its position. Nothing
  /// for a file that is not regular and after a read error. The file is taken to end after
  /// `most` bytes.
  std::optional<std::string> read(std::size_t most = ONE_MEBIBYTE) const;
  static constexpr std::size_t ONE_MEBIBYTE = 1U << 20U;

  /// Writes a text at the file's beginning, without moving its position.
  /// @return How many bytes were written: fewer than all when no space is left.
  std::size_t write(const std::string& text) const;
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
