#include "facts/host_context.h"
