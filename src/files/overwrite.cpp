#include "files/overwrite.h"

#include <unistd.h>

namespace Oza {
namespace {

void cut(const Descriptor& file, std::size_t size) {
  // A file that cannot be cut keeps more than its text, and every line of that.
  static_cast<void>(ftruncate(file.get(), static_cast<off_t>(size)) == 0);
}

}  // namespace

bool overwrite(const Descriptor& file, const std::optional<std::string>& before, const std::string& text) {
  const bool written = file.write(text) == text.size();
  if (!written && before && !before->empty()) {
    file.write(*before);
    cut(file, before->size());
  }
  if (written && (!before || before->size() > text.size())) {
    cut(file, text.size());
  }
  return written;
}

}  // namespace Oza
