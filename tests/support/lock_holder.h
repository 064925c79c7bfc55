#ifndef VESTRA_TESTS_SUPPORT_LOCK_HOLDER_H
#define VESTRA_TESTS_SUPPORT_LOCK_HOLDER_H

#include <sys/types.h>

#include <string>

namespace vestra_test {

/// A process that holds a record lock on a whole file, until this object's end.
class LockHolder {
 public:
  /// @param type   F_RDLCK or F_WRLCK.
  /// @param forks  Whether it forks a child that stays while it holds the lock.
  explicit LockHolder(const std::string& path, short type, bool forks = false);
  LockHolder(const LockHolder&) = delete;
  LockHolder& operator=(const LockHolder&) = delete;
  ~LockHolder();

  void stop() const;
  /// Kills it and not its child.
  void killAlone() const;

 private:
  pid_t process;
};

}  // namespace vestra_test

#endif
