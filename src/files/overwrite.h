#ifndef VESTRA_FILES_OVERWRITE_H
#define VESTRA_FILES_OVERWRITE_H

#include <optional>
#include <string>

#include "files/descriptor.h"

namespace Oza {

/// Makes a text the content of an open file with one write at its beginning, and then
/// cuts the file where it was longer: at no moment does it hold less than either text.
/// Where the text finds no room, what the file held is put back.
///
/// @param before  What the file holds; nothing where it could not be read.
/// @return Whether the text was written.
bool overwrite(const Descriptor& file, const std::optional<std::string>& before, const std::string& text);

}  // namespace Oza

#endif
