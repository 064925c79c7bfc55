#include "facts/file_snapshot.h"
