#ifndef VESTRA_TESTS_SUPPORT_LEASE_HOLDER_H
#define VESTRA_TESTS_SUPPORT_LEASE_HOLDER_H

#include <sys/types.h>

#include <string>

namespace vestra_test {

/// A process that holds a write lease on a file (F_SETLEASE), as a file server does that
/// exports it. Until it gives the lease back, open fails there with EAGAIN.
class LeaseHolder {
 public:
  enum Conduct {
    /// Gives the lease back when somebody opens the file.
    YIELDS,
    /// Keeps it until this object's end.
    KEEPS
  };
  LeaseHolder(const std::string& path, Conduct conduct);
  LeaseHolder(const LeaseHolder&) = delete;
  LeaseHolder& operator=(const LeaseHolder&) = delete;
  ~LeaseHolder();

 private:
  pid_t process;
};

}  // namespace vestra_test

#endif
