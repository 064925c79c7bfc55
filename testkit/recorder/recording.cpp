#include "recorder/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>

#include "recorder/fields.h"

namespace vestra::testkit {
namespace {

// Never destroyed: a host may be recorded as late as from a static destructor.
std::string& whereToRecord() {
  static auto* path = new std::string;
  return *path;
}

// The clock is read before anything here is constructed.
bool isClockHeld = false;
std::time_t clockTime = 0;

}  // namespace

void beginRecording(const std::string& directory) { whereToRecord() = directory; }

const std::string& recordDirectory() { return whereToRecord(); }

void holdClock(std::time_t now) {
  clockTime = now;
  isClockHeld = true;
}

std::optional<std::time_t> heldClock() { return isClockHeld ? std::optional(clockTime) : std::nullopt; }

std::string nextNumber() {
  static std::atomic<int> count{0};
  return std::to_string(getpid()) + "-" + std::to_string(++count);
}

void note(const char* name, const std::vector<std::string_view>& fields) {
  const std::string path = whereToRecord() + "/" + name;
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0) {
    return;
  }
  const std::string bytes = joinedFields(fields);
  // What cannot be written is missing from the run; the host goes on.
  [[maybe_unused]] const ssize_t written = write(file, bytes.data(), bytes.size());
  close(file);
}

}  // namespace vestra::testkit
