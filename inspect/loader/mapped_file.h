#ifndef VESTRA_INSPECT_LOADER_MAPPED_FILE_H
#define VESTRA_INSPECT_LOADER_MAPPED_FILE_H

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace vestra::inspect {

/// A regular file in memory, for reading. What is longer than its parts are asked for.
class MappedFile {
 public:
  /// Maps the file; what cannot be opened is empty, and `error` says why.
  explicit MappedFile(const std::string& path);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  /// The errno of the failure; 0 without one.
  int error() const { return failure; }
  std::string_view bytes() const { return {begin, length}; }

  /// A structure of the file; nothing when it does not lie within it.
  template <typename Structure>
  std::optional<Structure> at(std::size_t offset) const {
    if (offset > length || length - offset < sizeof(Structure)) {
      return std::nullopt;
    }
    Structure read;
    std::memcpy(&read, begin + offset, sizeof read);
    return read;
  }

  /// The text up to its NUL; empty when it does not lie within the file.
  std::string textAt(std::size_t offset) const;

 private:
  const char* begin = nullptr;
  std::size_t length = 0;
  int failure = 0;
};

}  // namespace vestra::inspect

#endif
