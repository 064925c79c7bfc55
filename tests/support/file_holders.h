#ifndef VESTRA_TESTS_SUPPORT_FILE_HOLDERS_H
#define VESTRA_TESTS_SUPPORT_FILE_HOLDERS_H

#include <sys/types.h>

#include <functional>
#include <string>

namespace vestra_test {

/// A process that holds a file until this object's end, together with its children.
class FileHolder {
 public:
  FileHolder(const FileHolder&) = delete;
  FileHolder& operator=(const FileHolder&) = delete;
  ~FileHolder();

  void stop() const;
  /// Kills it and not its children.
  void killAlone() const;

 protected:
  /// @param take  Takes the file, in that process; false when it cannot be had.
  /// @param wait  Done by that process afterwards.
  explicit FileHolder(
      const std::function<bool()>& take, const std::function<void()>& wait = [] {});

 private:
  pid_t process;
};

/// Holds a record lock on a whole file.
class LockHolder : public FileHolder {
 public:
  /// @param type   F_RDLCK or F_WRLCK.
  /// @param forks  Whether it forks a child that stays while it holds the lock.
  LockHolder(const std::string& path, short type, bool forks = false);
};

/// Holds a write lease on a file (F_SETLEASE), as a file server does that exports it. Until it
/// gives the lease back, open fails there with EAGAIN.
class LeaseHolder : public FileHolder {
 public:
  enum Conduct {
    /// Gives the lease back when somebody opens the file.
    YIELDS,
    /// Keeps it until this object's end.
    KEEPS
  };
  LeaseHolder(const std::string& path, Conduct conduct);
};

}  // namespace vestra_test

#endif
