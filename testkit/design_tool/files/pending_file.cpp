#include "design_tool/files/pending_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/new_file.h"

namespace vestra::design_tool {
namespace {

[[noreturn]] void failToWrite(const OutputPlace& place, int error) {
  throw DiagnosedError(
      {place.path(), 0, std::string("cannot be written: ") + std::strerror(error), "", 0, 0});
}

void remove(const OutputPlace& place, const std::string& name) {
  ::unlinkat(place.directory(), name.c_str(), 0);
}

}  // namespace

PendingFile::PendingFile(const OutputPlace& target, std::string_view content)
    : place(target), hiddenName(unpredictableName()) {
  const int error = writeNewFile(place.directory(), hiddenName, content);
  if (error != 0) {
    failToWrite(place, error);
  }
}

PendingFile::~PendingFile() {
  if (isCommitted && !isKept) {
    takeBack();
  } else if (!isCommitted || hasReplaced) {
    remove(place, hiddenName);
  }
}

/// The file that is replaced takes the hidden name until this one is kept, where the file system can exchange
/// two files.
void PendingFile::commit() {
  if (moveWith(RENAME_NOREPLACE)) {
    isCommitted = true;
    return;
  }
  hasReplaced = errno == EEXIST && moveWith(RENAME_EXCHANGE);
  isCommitted = hasReplaced || ((errno == EINVAL || errno == ENOSYS) && moveWith(0));
  if (!isCommitted) {
    failToWrite(place, errno);
  }
}

bool PendingFile::moveWith(unsigned int flags) const {
  return ::renameat2(place.directory(), hiddenName.c_str(), place.directory(), place.name().c_str(), flags) ==
         0;
}

void PendingFile::takeBack() const {
  if (hasReplaced) {
    moveWith(RENAME_EXCHANGE);
    remove(place, hiddenName);
  } else {
    remove(place, place.name());
  }
}

}  // namespace vestra::design_tool
