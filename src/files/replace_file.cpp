#include "files/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>

#include "files/access_rights.h"
#include "files/descriptor.h"
#include "files/file_size_signal.h"
#include "files/neighbour.h"
#include "files/open_file.h"

namespace Oza {
namespace {

enum class Replacement { DONE, LOST, IMPOSSIBLE };

/// Whether a file can give its name to another one: it is regular, and has no further
/// name that would keep the old text. It has none at all once another host has replaced it.
bool canBeReplaced(const Descriptor& file) { return file.isRegular() && file.status().st_nlink <= 1; }

/// @param old  The file that stands there, open for writing; not open for none.
Replacement replaceByNeighbour(const std::string& path, const Descriptor& old, const std::string& text) {
  Neighbour neighbour(path);
  if (!neighbour.file().isOpen() || (old.isOpen() && !takeAccessRights(old, neighbour.file())) ||
      neighbour.file().write(text) != text.size()) {
    return Replacement::IMPOSSIBLE;
  }
  if (neighbour.rename()) {
    return Replacement::DONE;
  }
  return errno == ENOENT ? Replacement::LOST : Replacement::IMPOSSIBLE;
}

// Another host may take a neighbour for a killed one's before it is locked. It hardly does
// so five times.
Replacement tryToReplace(const std::string& path, const std::string& text) {
  const Descriptor old(path, O_WRONLY | O_NOFOLLOW);
  if (!old.isOpen() && errno != ENOENT) {
    return Replacement::IMPOSSIBLE;
  }
  if (old.isOpen() && !canBeReplaced(old)) {
    return Replacement::IMPOSSIBLE;
  }
  Replacement result = Replacement::LOST;
  for (int tries = 0; result == Replacement::LOST && tries < 5; ++tries) {
    result = replaceByNeighbour(path, old, text);
  }
  return result;
}

void writeInPlace(const std::string& path, const std::string& text) {
  if (opensWithoutBlocking(statusOf(path), std::ios_base::out)) {
    Descriptor(path, O_WRONLY | O_CREAT | O_TRUNC).write(text);
  }
}

}  // namespace

void replaceFile(const std::string& path, const std::string& text) {
  FileSizeSignalHold hold;
  if (tryToReplace(path, text) == Replacement::DONE) {
    hold.endWithoutSignal();
  } else {
    writeInPlace(path, text);
  }
}

bool fileHolds(const std::string& path, const std::string& text) {
  return Descriptor(path, O_RDONLY).read() == text;
}

}  // namespace Oza
