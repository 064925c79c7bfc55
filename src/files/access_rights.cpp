#include "files/access_rights.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <string>

namespace Oza {
namespace {

constexpr mode_t PERMISSIONS = 07777;

/// The bytes of a file's access list; empty without one.
std::string accessListOf(const Descriptor& file) {
  std::array<char, 4096> list{};
  const ssize_t size = fgetxattr(file.get(), "system.posix_acl_access", list.data(), list.size());
  return size > 0 ? std::string(list.data(), static_cast<std::size_t>(size)) : std::string();
}

}  // namespace

// An access list shows in the permissions, so the new file of the same permissions as an
// old one without a list has none either.
bool takeAccessRights(const Descriptor& oldFile, const Descriptor& newFile) {
  const struct stat& oldStatus = oldFile.status();
  const struct stat& newStatus = newFile.status();
  if (oldStatus.st_uid != newStatus.st_uid || oldStatus.st_gid != newStatus.st_gid) {
    return false;
  }
  const std::string oldList = accessListOf(oldFile);
  if (oldStatus.st_mode == newStatus.st_mode && oldList.empty()) {
    return true;
  }
  return oldList == accessListOf(newFile) && fchmod(newFile.get(), oldStatus.st_mode & PERMISSIONS) == 0;
}

}  // namespace Oza
