#ifndef VESTRA_FILES_REPLACE_FILE_H
#define VESTRA_FILES_REPLACE_FILE_H

#include <string>

namespace Oza {

/// Replaces a file's text atomically: the text is written to a temporary file, which is
/// renamed over it, so that a reader finds the old or the new text whole. The file's owner,
/// permissions and ACL stay, except that another owner's file becomes ours.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
///
/// A file is written in place instead when it is a symbolic link, not a regular file,
/// read-only or has hard links; when the new file cannot get its group, permissions and
/// ACL; and when the temporary file cannot be created, written or renamed. Failures are not
/// reported. Nothing is written to a named pipe.
void replaceFile(const std::string& path, const std::string& text);

/// Whether the file's content is this text. False if it cannot be read.
bool fileHolds(const std::string& path, const std::string& text);

}  // namespace Oza

#endif
