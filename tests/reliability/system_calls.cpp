#include "reliability/system_calls.h"

#include <sys/syscall.h>

#include <cerrno>
#include <map>

namespace vestra_test {
namespace {

struct Known {
  const char* name;
  Subject subject;
  std::vector<int> errors;
};

const Known UNKNOWN{"", Subject::NONE, {}};

const std::map<long, Known>& knownCalls() {
  static const std::map<long, Known> known{
      // Files, by name.
      {SYS_openat,
       {"openat",
        Subject::PATH_SECOND,
        {EACCES, ENOENT, ENOSPC, EROFS, EMFILE, ENFILE, EAGAIN, EIO, EINTR, ENOMEM}}},
      {SYS_newfstatat, {"newfstatat", Subject::PATH_SECOND, {EACCES, ENOENT, EIO, ENOMEM, ELOOP}}},
      {SYS_stat, {"stat", Subject::PATH_FIRST, {EACCES, ENOENT, EIO, ENOMEM, ELOOP}}},
      {SYS_lstat, {"lstat", Subject::PATH_FIRST, {EACCES, ENOENT, EIO, ENOMEM, ELOOP}}},
      {SYS_statx, {"statx", Subject::PATH_SECOND, {EACCES, ENOENT, EIO, ENOMEM, ELOOP}}},
      {SYS_access, {"access", Subject::PATH_FIRST, {EACCES, ENOENT, EIO, ENOMEM}}},
      {SYS_readlink, {"readlink", Subject::PATH_FIRST, {EACCES, ENOENT, EIO, ENOMEM}}},
      {SYS_mkdir, {"mkdir", Subject::PATH_FIRST, {EACCES, ENOENT, ENOSPC, EROFS, EIO, ENOMEM, EMLINK}}},
      {SYS_unlink, {"unlink", Subject::PATH_FIRST, {EACCES, EPERM, ENOENT, EROFS, EBUSY, EIO, ENOMEM}}},
      {SYS_rmdir, {"rmdir", Subject::PATH_FIRST, {EACCES, EPERM, EROFS, EBUSY, EIO, ENOMEM}}},
      {SYS_unlinkat, {"unlinkat", Subject::PATH_SECOND, {EACCES, EPERM, ENOENT, EROFS, EBUSY, EIO, ENOMEM}}},
      {SYS_rename,
       {"rename", Subject::PATH_SECOND, {EACCES, EPERM, ENOENT, ENOSPC, EROFS, EBUSY, EIO, ENOMEM}}},
      {SYS_getcwd, {"getcwd", Subject::NONE, {ENOENT, EACCES, ENOMEM}}},
      // Files, by descriptor.
      {SYS_read, {"read", Subject::DESCRIPTOR, {EIO, EINTR, EISDIR, ENOMEM}}},
      {SYS_pread64, {"pread64", Subject::DESCRIPTOR, {EIO, EINTR, ENOMEM}}},
      {SYS_write, {"write", Subject::DESCRIPTOR, {ENOSPC, EDQUOT, EFBIG, EIO, EINTR, ENOMEM}}},
      {SYS_writev, {"writev", Subject::DESCRIPTOR, {ENOSPC, EDQUOT, EFBIG, EIO, EINTR, ENOMEM}}},
      {SYS_pwrite64, {"pwrite64", Subject::DESCRIPTOR, {ENOSPC, EDQUOT, EFBIG, EIO, EINTR, ENOMEM}}},
      {SYS_ftruncate, {"ftruncate", Subject::DESCRIPTOR, {EIO, EINTR, EPERM}}},
      {SYS_flock, {"flock", Subject::DESCRIPTOR, {EWOULDBLOCK, EINTR, ENOLCK, EOPNOTSUPP}}},
      {SYS_fstatfs, {"fstatfs", Subject::DESCRIPTOR, {EIO, EINTR, ENOSYS, ENOMEM}}},
      {SYS_fgetxattr, {"fgetxattr", Subject::DESCRIPTOR, {ENODATA, EOPNOTSUPP, EIO, ENOMEM}}},
      {SYS_lgetxattr, {"lgetxattr", Subject::PATH_FIRST, {ENODATA, EOPNOTSUPP, EIO, ENOMEM}}},
      {SYS_fsetxattr, {"fsetxattr", Subject::DESCRIPTOR, {EPERM, ENOSPC, EDQUOT, EIO}}},
      {SYS_fremovexattr, {"fremovexattr", Subject::DESCRIPTOR, {EPERM, EIO}}},
      {SYS_fchmod, {"fchmod", Subject::DESCRIPTOR, {EPERM, EROFS, EIO}}},
      {SYS_lseek, {"lseek", Subject::DESCRIPTOR, {ESPIPE, EIO}}},
      {SYS_fstat, {"fstat", Subject::DESCRIPTOR, {EIO, ENOMEM}}},
      {SYS_close, {"close", Subject::DESCRIPTOR, {EIO, EINTR, ENOSPC, EDQUOT}}},
      {SYS_fcntl, {"fcntl", Subject::DESCRIPTOR, {EAGAIN, EACCES, EINTR, ENOLCK, EIO}}},
      {SYS_ioctl, {"ioctl", Subject::DESCRIPTOR, {ENOTTY, EIO}}},
      {SYS_getdents64, {"getdents64", Subject::DESCRIPTOR, {EIO, ENOMEM}}},
      // Processes and the machine.
      {SYS_clone, {"clone", Subject::NONE, {EAGAIN, ENOMEM}}},
      {SYS_clone3, {"clone3", Subject::NONE, {EAGAIN, ENOMEM, ENOSYS}}},
      {SYS_vfork, {"vfork", Subject::NONE, {EAGAIN, ENOMEM}}},
      {SYS_wait4, {"wait4", Subject::NONE, {EINTR, ECHILD}}},
      {SYS_uname, {"uname", Subject::NONE, {EPERM, ENOMEM}}},
      {SYS_getrandom, {"getrandom", Subject::NONE, {EINTR, EAGAIN, ENOSYS}}},
      // Memory, the loader's and the C library's.
      {SYS_mmap, {"mmap", Subject::NONE, {ENOMEM, EACCES, EAGAIN}}},
      {SYS_mprotect, {"mprotect", Subject::NONE, {ENOMEM, EACCES}}},
      {SYS_munmap, {"munmap", Subject::NONE, {ENOMEM}}},
      {SYS_brk, {"brk", Subject::NONE, {ENOMEM}}},
      {SYS_madvise, {"madvise", Subject::NONE, {ENOMEM, EAGAIN}}},
      // These fail only when they are called wrongly.
      {SYS_rt_sigaction, {"rt_sigaction", Subject::NONE, {}}},
      {SYS_rt_sigprocmask, {"rt_sigprocmask", Subject::NONE, {}}},
      {SYS_rt_sigtimedwait, {"rt_sigtimedwait", Subject::NONE, {EAGAIN, EINTR}}},
      {SYS_rt_sigpending, {"rt_sigpending", Subject::NONE, {}}},
      {SYS_sigaltstack, {"sigaltstack", Subject::NONE, {}}},
      {SYS_futex, {"futex", Subject::NONE, {}}},
      {SYS_geteuid, {"geteuid", Subject::NONE, {}}},
      {SYS_prlimit64, {"prlimit64", Subject::NONE, {}}},
      {SYS_getpid, {"getpid", Subject::NONE, {}}},
      {SYS_gettid, {"gettid", Subject::NONE, {}}},
      {SYS_clock_nanosleep, {"clock_nanosleep", Subject::NONE, {EINTR}}},
      {SYS_clock_gettime, {"clock_gettime", Subject::NONE, {}}},
      {SYS_sched_yield, {"sched_yield", Subject::NONE, {}}},
      {SYS_prctl, {"prctl", Subject::NONE, {}}},
      // The host's own mark.
      {SYS_kill, {"kill", Subject::NONE, {}}}};
  return known;
}

const Known& lookUp(long number) {
  const auto found = knownCalls().find(number);
  return found != knownCalls().end() ? found->second : UNKNOWN;
}

}  // namespace

Subject subjectOf(long number) { return lookUp(number).subject; }

std::string nameOf(long number) {
  return isKnown(number) ? lookUp(number).name : "system call " + std::to_string(number);
}

bool isKnown(long number) { return knownCalls().count(number) != 0; }

bool managesMemory(long number) {
  return number == SYS_mmap || number == SYS_mprotect || number == SYS_munmap || number == SYS_brk ||
         number == SYS_madvise;
}

bool asksForStatus(long number) {
  return number == SYS_newfstatat || number == SYS_stat || number == SYS_lstat || number == SYS_statx ||
         number == SYS_fstat;
}

bool removes(long number) { return number == SYS_unlink || number == SYS_unlinkat || number == SYS_rmdir; }

const std::vector<int>& errorsOf(long number) { return lookUp(number).errors; }

}  // namespace vestra_test
