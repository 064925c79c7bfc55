#ifndef VESTRA_FILES_OVERWRITE_H
#define VESTRA_FILES_OVERWRITE_H

#include <string>

#include "files/descriptor.h"

namespace Oza {

/// Makes a text the content of an open file with one write at its beginning, and then
/// truncates the file if it was longer: at no moment does it hold less than either text.
///
/// Nothing is written when the text exceeds the process's file-size limit (RLIMIT_FSIZE).
/// When the disk is full, what the file held is put back.
///
/// @param before  What the file holds, as Descriptor::read returned it.
/// @return Whether the text was written.
bool overwrite(const Descriptor& file, const std::string& before, const std::string& text);

}  // namespace Oza

#endif
