#ifndef VESTRA_FILES_OPEN_FILE_H
#define VESTRA_FILES_OPEN_FILE_H

#include <ios>
#include <locale>
#include <string>

#include <boost/filesystem/operations.hpp>

namespace Oza {

/// The status of what stands at a path. A path that cannot be examined has the status
/// of an error, in which nothing exists.
boost::filesystem::file_status statusOf(const std::string& path);

/// Whether a file of this status can be opened in this mode, and read to its end,
/// without blocking.
///
/// For reading, that is a regular file: a named pipe or a terminal blocks, and a device
/// may have no end. For writing, it is everything but a named pipe. A path with nothing
/// there, or one that cannot be examined, is left to the opening itself.
bool opensWithoutBlocking(const boost::filesystem::file_status& status, std::ios_base::openmode mode);

/// Opens a file stream for bytes: the host's global locale neither converts what
/// is read and written nor groups the digits of a number. Where opening could block,
/// the stream is left closed, as after any other failure to open.
template <typename FileStream>
void openFile(FileStream& stream, const std::string& path, std::ios_base::openmode mode) {
  stream.imbue(std::locale::classic());
  if (opensWithoutBlocking(statusOf(path), mode)) {
    stream.open(path, mode);
  }
}

}  // namespace Oza

#endif
