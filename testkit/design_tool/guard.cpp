#include "design_tool/guard.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"

namespace vestra::design_tool {
namespace {

/// The sanitizers reserve far more address space than they use.
#if defined(__has_feature)
constexpr bool IS_SANITIZED = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

constexpr rlim_t MEMORY = rlim_t{8} << 30;
constexpr rlim_t PROCESSOR_SECONDS = 300;

volatile std::size_t* sharedLine = nullptr;

void limit(int resource, rlim_t most) {
  struct rlimit limits = {};
  if (::getrlimit(static_cast<__rlimit_resource_t>(resource), &limits) != 0 || limits.rlim_max < most) {
    return;
  }
  limits.rlim_cur = limits.rlim_max = most;
  ::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
}

void limitResources() {
  if (!IS_SANITIZED) {
    limit(RLIMIT_AS, MEMORY);
  }
  limit(RLIMIT_CPU, PROCESSOR_SECONDS);
  limit(RLIMIT_CORE, 0);
}

void shareLine() {
  void* const page =
      ::mmap(nullptr, sizeof *sharedLine, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) {
    throw std::system_error(errno, std::generic_category(), "mmap");
  }
  sharedLine = static_cast<volatile std::size_t*>(page);
}

int waitFor(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "waitpid");
    }
  }
  return status;
}

int reportDeath(const std::string& file, int signal) {
  const std::string message =
      fmt::format("the script has brought the interpreter down ({})", ::strsignal(signal));
  std::fputs(format({file, *sharedLine, message, "", 0, 0}).c_str(), stderr);
  return 1;
}

}  // namespace

int runGuarded(const std::string& file, const std::function<int()>& work) {
  shareLine();
  const pid_t child = ::fork();
  if (child < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    limitResources();
    std::exit(work());
  }
  const int status = waitFor(child);
  return WIFSIGNALED(status) ? reportDeath(file, WTERMSIG(status)) : WEXITSTATUS(status);
}

void noteLine(std::size_t line) {
  if (sharedLine != nullptr) {
    *sharedLine = line;
  }
}

}  // namespace vestra::design_tool
