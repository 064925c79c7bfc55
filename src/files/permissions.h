#ifndef VESTRA_FILES_PERMISSIONS_H
#define VESTRA_FILES_PERMISSIONS_H

#include <string>

#include "files/descriptor.h"

namespace Oza {

/// Gives a new file the permissions and the POSIX ACL of an old one of the same owner. An
/// ACL that the new file inherited from the directory's default ACL is replaced or removed.
/// @return Whether both have the same group, permissions and ACL afterwards.
bool copyPermissions(const std::string& oldPath, const struct stat& oldStatus, const Descriptor& newFile);

}  // namespace Oza

#endif
