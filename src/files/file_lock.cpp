#include "files/file_lock.h"

#include <sys/file.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iterator>

namespace Oza {
namespace {

// As the kernel numbers them.
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

bool acquire(int descriptor, int operation, TimeBudget& timeBudget) {
  while (flock(descriptor, operation | LOCK_NB) != 0) {
    if (errno == EINTR) {
      continue;
    }
    if (errno != EWOULDBLOCK || !timeBudget.pause()) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool answersLocksAtOnce(int descriptor) {
  struct statfs system {};
  if (fstatfs(descriptor, &system) != 0) {
    return false;
  }
  const auto type = static_cast<std::uint32_t>(system.f_type);
  return std::find(std::begin(REMOTE_FILE_SYSTEMS), std::end(REMOTE_FILE_SYSTEMS), type) ==
         std::end(REMOTE_FILE_SYSTEMS);
}

FileLock::FileLock(const Descriptor& lockedFile, Kind kind, TimeBudget& timeBudget)
    : file(lockedFile),
      held(answersLocksAtOnce(file.get()) &&
           acquire(file.get(), kind == SHARED ? LOCK_SH : LOCK_EX, timeBudget)) {}

// Closing would not do where a child of the process still has the descriptor.
FileLock::~FileLock() {
  if (held) {
    flock(file.get(), LOCK_UN);
  }
}

}  // namespace Oza
