#ifndef VESTRA_INSPECT_REHEARSE_CAUGHT_H
#define VESTRA_INSPECT_REHEARSE_CAUGHT_H

#include <string>
#include <vector>

namespace vestra::inspect {

/// In the main design tool's stead: copies the script and the rules file that it would have
/// been given to a folder of the rehearsal.
/// @param words  The tool's arguments. @return The status to leave with.
int keepWhatWasCaught(const std::string& rehearsal, const std::vector<std::string>& words);

}  // namespace vestra::inspect

#endif
