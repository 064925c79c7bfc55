#ifndef VESTRA_INSPECT_REHEARSE_SUPPORT_LIBRARY_H
#define VESTRA_INSPECT_REHEARSE_SUPPORT_LIBRARY_H

#include <string>

namespace vestra::inspect {

/// The command that the stub support library names in the place of the real one's.
std::string stubTool();

/// What the real support library named when it was last asked.
const std::string& realTool();

}  // namespace vestra::inspect

#endif
