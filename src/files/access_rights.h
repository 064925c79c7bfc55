#ifndef VESTRA_FILES_ACCESS_RIGHTS_H
#define VESTRA_FILES_ACCESS_RIGHTS_H

#include "files/descriptor.h"

namespace Oza {

/// Gives a new file in the same directory the permissions of an old one.
/// @return Whether both have the same owner, group, permissions and access list then.
bool takeAccessRights(const Descriptor& oldFile, const Descriptor& newFile);

}  // namespace Oza

#endif
