#include "files/overwrite.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace Oza {
namespace {

// Checked before the write: a short write would have to be undone by a second one, and a kill
// between the two would leave a mixture of both texts.
bool fitsTheSizeLimit(const std::string& text) {
  rlimit limit{};
  return getrlimit(RLIMIT_FSIZE, &limit) != 0 || text.size() <= limit.rlim_cur;
}

void truncate(const Descriptor& file, std::size_t size) {
  // If truncation fails, old bytes follow the text; readers ignore lines after the fifth.
  // NOMUTATE(comparison, boundary): the comparison only silences -Wunused-result.
  static_cast<void>(ftruncate(file.get(), static_cast<off_t>(size)) == 0);
}

}  // namespace

bool overwrite(const Descriptor& file, const std::string& before, const std::string& text) {
  if (!fitsTheSizeLimit(text)) {
    return false;
  }
  const bool written = file.write(text) == text.size();
  if (!written && !before.empty()) {
    file.write(before);
    truncate(file, before.size());
  }
  // `before` holds at most the first MiB of the file.
  const auto sizeBefore = std::max(before.size(), static_cast<std::size_t>(file.status().st_size));
  if (written && sizeBefore > text.size()) {
    truncate(file, text.size());
  }
  return written;
}

}  // namespace Oza
