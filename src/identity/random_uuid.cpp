#include "identity/random_uuid.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include <boost/throw_exception.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <boost/version.hpp>
#if BOOST_VERSION >= 106700
#include <boost/uuid/entropy_error.hpp>
#endif

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
  return count;
}

// By number, since glibc has getrandom() from 2.25 on. Linux has it from 3.17 on.
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

// A uniform random bit generator for Boost.Uuid, whose own sources differ by version: some
// ignore failures, some never read the device.
class SystemRandomness {
 public:
  using result_type = std::uint64_t;

  static constexpr result_type min() { return 0; }
  static constexpr result_type max() { return std::numeric_limits<result_type>::max(); }

  result_type operator()() const {
    result_type number = 0;
    if (drawRandomBytes(&number, sizeof number) != static_cast<ssize_t>(sizeof number)) {
      throwEntropyError();
    }
    return number;
  }
};

}  // namespace

std::string randomUuid() {
  SystemRandomness randomness;
  boost::uuids::basic_random_generator<SystemRandomness> generate(randomness);
  return boost::uuids::to_string(generate());
}

}  // namespace Oza
