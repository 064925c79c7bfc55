#ifndef VESTRA_HANDLER_ENVIRONMENT_SWITCH_H
#define VESTRA_HANDLER_ENVIRONMENT_SWITCH_H

namespace Oza {

/// Whether an environment variable is set and not empty. "0" counts as on, too.
bool isSwitchedOn(const char* variable);

}  // namespace Oza

#endif
