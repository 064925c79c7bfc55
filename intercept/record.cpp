#include <alloca.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "intercept/intercept.h"

namespace vestra::intercept {
namespace {

const char* directoryOfRecord = nullptr;

}  // namespace

void recordIn(const char* directory) { directoryOfRecord = directory; }

const char* recordDirectory() { return directoryOfRecord; }

// What cannot be written is missing from the record; the host goes on.
void note(const char* file, const std::string_view* fields, std::size_t count) {
  char path[PATH_MAX];
  const std::size_t directory = std::strlen(directoryOfRecord);
  const std::size_t name = std::strlen(file);
  if (directory + name + 2 > sizeof path) {
    return;
  }
  std::memcpy(path, directoryOfRecord, directory);  // NOLINT(bugprone-not-null-terminated-result)
  path[directory] = '/';
  std::memcpy(path + directory + 1, file, name + 1);
  const int record = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (record < 0) {
    return;
  }
  auto* lengths = static_cast<std::uint64_t*>(alloca(count * sizeof(std::uint64_t)));
  auto* pieces = static_cast<iovec*>(alloca(2 * count * sizeof(iovec)));
  for (std::size_t i = 0; i < count; ++i) {
    lengths[i] = fields[i].size();
    pieces[2 * i] = {&lengths[i], sizeof lengths[i]};
    pieces[2 * i + 1] = {const_cast<char*>(fields[i].data()), fields[i].size()};
  }
  static_cast<void>(!writev(record, pieces, static_cast<int>(2 * count)));
  close(record);
}

}  // namespace vestra::intercept
