#include "identity/identity_file.h"

#include <sys/stat.h>

#include <chrono>
#include <utility>

#include "files/file_lock.h"

namespace Oza {
namespace {

/// Kept for the exclusive lock under which this host counts.
constexpr std::chrono::nanoseconds RESERVE_FOR_THE_ATTEMPT = std::chrono::milliseconds(50);

bool isEmpty(const Descriptor& file) {
  struct stat now {};
  return fstat(file.get(), &now) == 0 && now.st_size == 0;
}

/// Whether the file's st_mtime is within 250 ms of now: another host may be initialising it.
bool isNew(const Descriptor& file) {
  const struct timespec written = file.status().st_mtim;
  const auto age = std::chrono::system_clock::now().time_since_epoch() -
                   std::chrono::seconds(written.tv_sec) - std::chrono::nanoseconds(written.tv_nsec);
  return age < TimeBudget::TOTAL && age > -TimeBudget::TOTAL;
}

}  // namespace

std::optional<std::string> readIdentityText(const Descriptor& file, TimeBudget& timeBudget) {
  const bool locked = lockFile(file, LockKind::SHARED, timeBudget);
  std::optional<std::string> text = file.read();
  if (locked) {
    unlockFile(file);
  }
  return text;
}

std::optional<std::string> awaitIdentityText(const Descriptor& file, TimeBudget& timeBudget) {
  while (isEmpty(file) && isNew(file) && timeBudget.pause(RESERVE_FOR_THE_ATTEMPT)) {
  }
  return readIdentityText(file, timeBudget);
}

std::optional<std::string> rereadIdentityText(const Descriptor& file, std::string corrupt,
                                              TimeBudget& timeBudget) {
  std::optional<std::string> text = std::move(corrupt);
  for (std::optional<std::string> before; text && text != before && timeBudget.pause();) {
    before = std::move(text);
    text = readIdentityText(file, timeBudget);
  }
  return text;
}

std::optional<std::string> identityTextToOverwrite(const Descriptor& file) {
  std::optional<std::string> text = file.read();
  if (!text && isEmpty(file)) {
    text.emplace();
  }
  return text;
}

}  // namespace Oza
