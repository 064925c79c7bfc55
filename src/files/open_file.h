#ifndef VESTRA_FILES_OPEN_FILE_H
#define VESTRA_FILES_OPEN_FILE_H

#include <ios>
#include <locale>
#include <string>

#include <boost/filesystem/operations.hpp>

namespace Oza {

/// What stands at a path. Where nobody may look, nothing that is known.
boost::filesystem::file_status statusOf(const std::string& path);

/// Whether opening what has this status so, and reading it to its end, is sure to come
/// back.
///
/// For reading, that is a regular file: a named pipe or a terminal waits for
/// somebody else, and a device may have no end. For writing, it is everything but
/// a named pipe. A path with nothing there, or where nobody may look, is left to
/// the opening itself.
bool opensWithoutWaiting(const boost::filesystem::file_status& status, std::ios_base::openmode mode);

/// Opens a file stream for bytes: the host's global locale neither converts what
/// is read and written nor groups the digits of a number. Where opening could
/// wait, the stream is left closed, as after any other failure to open. `status` is the
/// path's, for who has just asked for it.
template <typename FileStream>
void openFile(FileStream& stream, const std::string& path, std::ios_base::openmode mode,
              const boost::filesystem::file_status& status) {
  stream.imbue(std::locale::classic());
  if (opensWithoutWaiting(status, mode)) {
    stream.open(path, mode);
  }
}

/// The same for who has not.
template <typename FileStream>
void openFile(FileStream& stream, const std::string& path, std::ios_base::openmode mode) {
  openFile(stream, path, mode, statusOf(path));
}

}  // namespace Oza

#endif
