#include "support/scoped_current_directory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vestra_test {

ScopedCurrentDirectory::ScopedCurrentDirectory(const std::string& directory)
    : before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
  if (before == -1 || chdir(directory.c_str()) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot go to " + directory);
  }
}

ScopedCurrentDirectory::~ScopedCurrentDirectory() {
  if (fchdir(before) == 0) {
    close(before);
  }
}

}  // namespace vestra_test
