#include "files/permissions.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstddef>
#include <optional>

namespace Oza {
namespace {

constexpr const char* ACL = "system.posix_acl_access";
constexpr std::size_t LARGEST_ACL = 4096;
constexpr mode_t PERMISSIONS = 07777;

/// @param get  Calls lgetxattr or fgetxattr with a buffer and its size.
/// @return The ACL's bytes, empty for a file without one; nothing when it cannot be read.
template <typename Get>
std::optional<std::string> readAcl(Get get) {
  std::string acl(LARGEST_ACL, '\0');
  const ssize_t size = get(&acl[0], acl.size());
  if (size < 0 && errno != ENODATA && errno != EOPNOTSUPP) {
    return std::nullopt;
  }
  acl.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return acl;
}

bool setAcl(const Descriptor& file, const std::string& acl) {
  return (acl.empty() ? fremovexattr(file.get(), ACL)
                      : fsetxattr(file.get(), ACL, acl.data(), acl.size(), 0)) == 0;
}

}  // namespace

bool copyPermissions(const std::string& oldPath, const struct stat& oldStatus, const Descriptor& newFile) {
  const auto oldAcl =
      readAcl([&](char* acl, std::size_t size) { return lgetxattr(oldPath.c_str(), ACL, acl, size); });
  const auto newAcl =
      readAcl([&](char* acl, std::size_t size) { return fgetxattr(newFile.get(), ACL, acl, size); });
  return oldStatus.st_gid == newFile.status().st_gid && oldAcl && newAcl &&
         (oldAcl == newAcl || setAcl(newFile, *oldAcl)) &&
         fchmod(newFile.get(), oldStatus.st_mode & PERMISSIONS) == 0;
}

}  // namespace Oza
