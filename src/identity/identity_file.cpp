#include "identity/identity_file.h"

#include <sys/stat.h>

#include <chrono>
#include <utility>

#include "files/file_lock.h"

namespace Oza {
namespace {

/// A host that waited for a record in vain still has to find the lock free to count.
constexpr std::chrono::nanoseconds KEPT_FOR_THE_ATTEMPT = std::chrono::milliseconds(50);

bool isEmpty(const Descriptor& file) {
  struct stat now {};
  return fstat(file.get(), &now) == 0 && now.st_size == 0;
}

/// Whether the file was written within the time that a host waits for another.
bool isYoung(const Descriptor& file) {
  const struct timespec written = file.status().st_mtim;
  const auto age = std::chrono::system_clock::now().time_since_epoch() -
                   std::chrono::seconds(written.tv_sec) - std::chrono::nanoseconds(written.tv_nsec);
  return age < TimeBudget::TOTAL && age > -TimeBudget::TOTAL;
}

}  // namespace

std::optional<std::string> readIdentityText(const Descriptor& file, TimeBudget& timeBudget) {
  const FileLock lock(file, FileLock::SHARED, timeBudget);
  return file.read();
}

std::optional<std::string> awaitIdentityText(const Descriptor& file, TimeBudget& timeBudget) {
  while (isEmpty(file) && isYoung(file) && timeBudget.pause(KEPT_FOR_THE_ATTEMPT)) {
  }
  return readIdentityText(file, timeBudget);
}

std::optional<std::string> rereadIdentityText(const Descriptor& file, std::string damaged,
                                              TimeBudget& timeBudget) {
  std::optional<std::string> text = std::move(damaged);
  for (std::optional<std::string> before; text && text != before && timeBudget.pause();) {
    before = std::move(text);
    text = readIdentityText(file, timeBudget);
  }
  return text;
}

}  // namespace Oza
