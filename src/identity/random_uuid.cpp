#include "identity/random_uuid.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace Oza {
namespace {

// An empty file in its place is no source either.
ssize_t readRandomFile(void* buffer, std::size_t size) {
  const int file = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return -1;
  }
  const ssize_t count = read(file, buffer, size);
  close(file);
  return count > 0 ? count : -1;
}

// The C library's function is younger than the C libraries of some hosts, and the system
// call itself younger than some kernels. Not each version of Boost lets itself be told.
[[maybe_unused]] ssize_t drawRandomBytes(void* buffer, std::size_t size, unsigned int flags) {
  const ssize_t count = syscall(SYS_getrandom, buffer, size, flags);
  return count < 0 && errno == ENOSYS ? readRandomFile(buffer, size) : count;
}

}  // namespace
}  // namespace Oza

#define BOOST_UUID_RANDOM_PROVIDER_GETRANDOM_IMPL_GETRANDOM ::Oza::drawRandomBytes
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace Oza {

std::string randomUuid() {
  boost::uuids::random_generator generate;
  return boost::uuids::to_string(generate());
}

}  // namespace Oza
