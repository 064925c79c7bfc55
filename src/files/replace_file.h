#ifndef VESTRA_FILES_REPLACE_FILE_H
#define VESTRA_FILES_REPLACE_FILE_H

#include <string>

namespace Oza {

/// Replaces a file's text atomically: the text is written to a temporary file, which is
/// renamed over it, so that a reader finds the old or the new text whole. The file's owner,
/// permissions and ACL stay, but for a file of another owner, which becomes ours.
///
/// A file is written in place instead when it is a symbolic link, not a regular file,
/// read-only or has hard links; when the new file cannot get its group, permissions and
/// ACL; and when the temporary file cannot be made, written or renamed. A failure is not
/// noticed; nothing is written to a named pipe.
void replaceFile(const std::string& path, const std::string& text);

/// Whether a file that can be read holds this text.
bool fileHolds(const std::string& path, const std::string& text);

}  // namespace Oza

#endif
