#ifndef VESTRA_INSPECT_REHEARSE_DIRECTORY_H
#define VESTRA_INSPECT_REHEARSE_DIRECTORY_H

#include <sys/stat.h>

#include <optional>
#include <string>

namespace vestra::inspect {

/// An open directory. Everything in it is reached by its descriptor (openat, O_NOFOLLOW), so that
/// links that others put there lead nowhere, and no pipe is waited for.
class Directory {
 public:
  /// @throws std::runtime_error when there is none
  explicit Directory(const std::string& path);
  Directory(Directory&& other) noexcept;
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory();

  struct stat status() const;
  /// Nothing where there is no directory.
  std::optional<Directory> enter(const std::string& name) const;
  /// @param mode  whatever the umask says
  /// @throws std::runtime_error when it cannot be made
  Directory make(const std::string& name, mode_t mode) const;
  /// The bytes of a regular file of at most 256 MiB.
  std::optional<std::string> read(const std::string& name) const;
  /// Writes a file that is not there.
  /// @throws std::runtime_error when it cannot be written
  void write(const std::string& name, const std::string& text) const;
  /// Removes a file or a directory with all that is in it, as far as it can be done.
  void remove(const std::string& name) const;

 private:
  explicit Directory(int openDescriptor) : descriptor(openDescriptor) {}
  void removeContent() const;

  int descriptor;
};

}  // namespace vestra::inspect

#endif
