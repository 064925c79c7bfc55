#include "identity/random_uuid.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include <boost/throw_exception.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <boost/version.hpp>
#if BOOST_VERSION >= 106700
#include <boost/uuid/entropy_error.hpp>
#endif

#include "files/descriptor.h"

namespace Oza {
namespace {

ssize_t readRandomFile(void* buffer, std::size_t size) {
  const Descriptor file("/dev/urandom", O_RDONLY);
  return file.isOpen() ? read(file.get(), buffer, size) : -1;
}

// Some supported C libraries lack getrandom() (glibc before 2.25), some kernels the system
// call (Linux before 3.17).
ssize_t drawRandomBytes(void* buffer, std::size_t size) {
  ssize_t count = 0;
  do {
    count = syscall(SYS_getrandom, buffer, size, 0U);
  } while (count < 0 && errno == EINTR);
  return count < 0 && errno == ENOSYS ? readRandomFile(buffer, size) : count;
}

[[noreturn]] void throwEntropyError() {
#if BOOST_VERSION >= 106700
  boost::throw_exception(boost::uuids::entropy_error(errno, "getrandom"));
#else
  boost::throw_exception(std::runtime_error("getrandom"));
#endif
}

void setBits(std::uint8_t& byte, unsigned int mask, unsigned int bits) {
  byte = static_cast<std::uint8_t>((byte & ~mask) | bits);
}

}  // namespace

// Not by Boost's generators: their sources of randomness differ by version. Some ignore
// failures, some never read the device.
std::string randomUuid() {
  boost::uuids::uuid uuid{};
  if (drawRandomBytes(uuid.begin(), uuid.size()) != static_cast<ssize_t>(uuid.size())) {
    throwEntropyError();
  }
  setBits(uuid.begin()[6], 0xF0, 0x40);  // version 4
  setBits(uuid.begin()[8], 0xC0, 0x80);  // the variant of RFC 4122
  return boost::uuids::to_string(uuid);
}

}  // namespace Oza
