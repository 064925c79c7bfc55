#include "support/interposed/c_library.h"

#include <cerrno>
#include <cstddef>
#include <utility>

namespace vestra_test {
namespace {

std::optional<std::time_t> setMoment;

std::optional<std::string> domainName;
int timesAsked = 0;

struct Recording {
  int status = 0;
  std::function<void()> look = [] {};
  std::vector<std::string> lines;
};
std::optional<Recording> recording;

std::time_t realTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec;
}

}  // namespace

ScopedTime::ScopedTime(std::time_t moment) { setMoment = moment; }

ScopedTime::~ScopedTime() { setMoment.reset(); }

ScopedDomainName::ScopedDomainName(std::optional<std::string> name) {
  domainName = std::move(name);
  timesAsked = 0;
}

ScopedDomainName::~ScopedDomainName() { domainName.reset(); }

int ScopedDomainName::calls() const { return timesAsked; }

RecordingShell::RecordingShell(int status) {
  recording.emplace();
  recording->status = status;
}

RecordingShell::~RecordingShell() { recording.reset(); }

void RecordingShell::whileRunning(std::function<void()> look) { recording->look = std::move(look); }

const std::vector<std::string>& RecordingShell::commandLines() const { return recording->lines; }

}  // namespace vestra_test

// The C library's names of parameters are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

std::time_t time(std::time_t* out) noexcept {
  const std::time_t now = vestra_test::setMoment.value_or(vestra_test::realTime());
  if (out != nullptr) {
    *out = now;
  }
  return now;
}

int getdomainname(char* name, std::size_t size) noexcept {
  ++vestra_test::timesAsked;
  if (!vestra_test::domainName || vestra_test::domainName->size() >= size) {
    errno = EINVAL;
    return -1;
  }
  const std::size_t length = vestra_test::domainName->copy(name, size - 1);
  name[length] = '\0';
  return 0;
}

int system(const char* line) {
  if (!vestra_test::recording) {
    return -1;
  }
  vestra_test::recording->lines.emplace_back(line);
  vestra_test::recording->look();
  return vestra_test::recording->status;
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
