#ifndef VESTRA_HANDLER_ENVIRONMENT_SWITCH_H
#define VESTRA_HANDLER_ENVIRONMENT_SWITCH_H

namespace Oza {

/// Whether an environment variable is set to anything but the empty text. What the
/// text says, "0" included, has no meaning.
bool isSwitchedOn(const char* variable);

}  // namespace Oza

#endif
