#include "files/file_lock.h"

#include <fcntl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iterator>

namespace Oza {
namespace {

// Values of f_type, see statfs(2).
constexpr std::uint32_t REMOTE_FILE_SYSTEMS[] = {
    0x6969,      // NFS
    0x517B,      // SMB
    0xFE534D42,  // SMB2
    0xFF534D42,  // CIFS
    0x564C,      // NCP
    0x01021997,  // 9P
    0x5346414F,  // AFS
    0x6B414653,  // AFS, the kernel's
    0x73757245,  // Coda
    0x00C36400,  // Ceph
    0x0BD00BD0,  // Lustre
    0x47504653,  // GPFS
    0x19830326,  // BeeGFS
    0x20030528,  // OrangeFS
    0xAAD7AAEA,  // PanFS
    0x01161970,  // GFS2
    0x7461636F,  // OCFS2
    0x65735546,  // FUSE
    0x786F4256,  // shared folders of virtual machines
    0xBACBACBC,
};

/// Whether F_SETLK cannot block. On network and cluster file systems it waits for another
/// machine, on FUSE for another process, and either may never reply.
bool locksWithoutBlocking(const Descriptor& file) {
  struct statfs system {};
  if (fstatfs(file.get(), &system) != 0) {
    return false;
  }
  const auto type = static_cast<std::uint32_t>(system.f_type);
  return std::find(std::begin(REMOTE_FILE_SYSTEMS), std::end(REMOTE_FILE_SYSTEMS), type) ==
         std::end(REMOTE_FILE_SYSTEMS);
}

/// @param type  F_RDLCK, F_WRLCK or F_UNLCK.
bool setLock(const Descriptor& file, short type) {
  struct flock wholeFile {};
  wholeFile.l_type = type;
  wholeFile.l_whence = SEEK_SET;
  return fcntl(file.get(), F_SETLK, &wholeFile) == 0;
}

}  // namespace

bool lockFile(const Descriptor& file, LockKind kind, TimeBudget& timeBudget) {
  if (!file.isRegular() || !locksWithoutBlocking(file)) {
    return false;
  }
  const short type = kind == LockKind::SHARED ? F_RDLCK : F_WRLCK;
  while (!setLock(file, type)) {
    const bool isLocked = errno == EAGAIN || errno == EACCES;
    if (errno != EINTR && !(isLocked && timeBudget.pause())) {
      return false;
    }
  }
  return true;
}

void unlockFile(const Descriptor& file) { setLock(file, F_UNLCK); }

}  // namespace Oza
