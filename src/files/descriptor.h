#ifndef VESTRA_FILES_DESCRIPTOR_H
#define VESTRA_FILES_DESCRIPTOR_H

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>

namespace Oza {

/// An open file, closed at the object's end. No program that the process starts inherits
/// it, and opening it never blocks on a named pipe.
class Descriptor {
 public:
  /// @param flags  Those of open(2).
  /// @param mode   The permissions of a file that is made, less the process's umask.
  Descriptor(const std::string& path, int flags, mode_t mode = 0666);
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  bool isOpen() const { return number >= 0; }
  int get() const { return number; }
  /// The file's status when it was opened; all zeros where it cannot be told.
  const struct stat& status() const { return statusAtOpening; }
  bool hasStatus() const { return statusAtOpening.st_mode != 0; }
  bool isRegular() const { return S_ISREG(statusAtOpening.st_mode); }

  /// What the file holds from its beginning, read without moving its position. Nothing
  /// for a file that is not regular and after a read error.
  std::optional<std::string> read() const;

  /// Writes a text at an offset.
  /// @return How much of it was written: all of it, or what there was room for.
  std::size_t write(const std::string& text, std::size_t offset = 0) const;

 private:
  int number;
  struct stat statusAtOpening {};
};

}  // namespace Oza

#endif
