#include "loader/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "facts/looked_file.h"

namespace vestra::inspect {

MappedFile::MappedFile(const std::string& path) {
  const int descriptor = openToLook(path);
  struct stat status {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) {
    failure = errno;
  } else if (!S_ISREG(status.st_mode)) {
    failure = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  } else if (status.st_size > 0) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    failure = mapped == MAP_FAILED ? errno : 0;
    if (failure == 0) {
      begin = static_cast<const char*>(mapped);
      length = size;
    }
  }
  if (descriptor >= 0) {
    close(descriptor);
  }
}

MappedFile::~MappedFile() {
  if (begin != nullptr) {
    munmap(const_cast<char*>(begin), length);
  }
}

std::string MappedFile::textAt(std::size_t offset) const {
  if (offset >= length) {
    return {};
  }
  return {begin + offset, strnlen(begin + offset, length - offset)};
}

}  // namespace vestra::inspect
