#ifndef VESTRA_FILES_REPLACE_FILE_H
#define VESTRA_FILES_REPLACE_FILE_H

#include <string>

namespace Oza {

/// Makes a text the content of a file, so that a reader finds the old or the new text
/// whole: it is written to a neighbour with a name of its own, which is then renamed.
/// What killed processes left of neighbours in the directory is removed before.
///
/// Where the file is a symbolic link, has further names or an owner or permissions that
/// a neighbour cannot have, or the directory lets no neighbour be made, it is written in
/// place. A failure is not noticed; nothing is written to a named pipe. The file's
/// owner and permissions stay.
void replaceFile(const std::string& path, const std::string& text);

/// Whether a file that can be read holds this text.
bool fileHolds(const std::string& path, const std::string& text);

}  // namespace Oza

#endif
