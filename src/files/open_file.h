#ifndef VESTRA_FILES_OPEN_FILE_H
#define VESTRA_FILES_OPEN_FILE_H

#include <ios>
#include <locale>
#include <string>

namespace Oza {

/// Whether opening `path` so, and reading it to its end, is sure to come back.
///
/// For reading, that is a regular file: a named pipe or a terminal waits for
/// somebody else, and a device may have no end. For writing, it is everything but
/// a named pipe. A path with nothing there, or where nobody may look, is left to
/// the opening itself.
bool opensWithoutWaiting(const std::string& path, std::ios_base::openmode mode);

/// Opens a file stream for bytes: the host's global locale neither converts what
/// is read and written nor groups the digits of a number. Where opening could
/// wait, the stream is left closed, as after any other failure to open.
template <typename FileStream>
void openFile(FileStream& stream, const std::string& path, std::ios_base::openmode mode) {
  stream.imbue(std::locale::classic());
  if (opensWithoutWaiting(path, mode)) {
    stream.open(path, mode);
  }
}

}  // namespace Oza

#endif
