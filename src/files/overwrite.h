#ifndef VESTRA_FILES_OVERWRITE_H
#define VESTRA_FILES_OVERWRITE_H

#include <string>

#include "files/descriptor.h"

namespace Oza {

/// Replaces an open file's content with one pwrite(2) at its beginning, then truncates the
/// file if it was longer. A kill between the two leaves the new text and the old one's end.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
///
/// Nothing is written when the text exceeds the process's file-size limit (RLIMIT_FSIZE).
/// When no space is left, the old content is restored.
///
/// @param before  The old content, as Descriptor::read returned it.
/// @return Whether the text was written.
bool overwrite(const Descriptor& file, const std::string& before, const std::string& text);

}  // namespace Oza

#endif
