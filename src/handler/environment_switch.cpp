#include "handler/environment_switch.h"

#include <cstdlib>

namespace Oza {

bool isSwitchedOn(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace Oza
