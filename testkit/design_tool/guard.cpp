#include "design_tool/guard.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>
#include <system_error>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <tcl.h>
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

/// For what becomes of a script, which needs more than running it.
constexpr rlim_t MEMORY_OF_THE_RUN = rlim_t{8} << 30;
constexpr rlim_t PROCESSOR_SECONDS_OF_THE_RUN = 900;

/// What both processes see.
struct Shared {
  volatile std::size_t line;
  volatile bool isOutOfMemory;
};

Shared* shared = nullptr;
Allowance granted;

void limit(int resource, rlim_t most) {
  struct rlimit limits = {};
  if (::getrlimit(static_cast<__rlimit_resource_t>(resource), &limits) != 0 || limits.rlim_max < most) {
    return;
  }
  limits.rlim_cur = limits.rlim_max = most;
  ::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
}

void limitMemory(rlim_t most) {
  struct rlimit limits = {};
  if (!IS_SANITIZED && ::getrlimit(RLIMIT_AS, &limits) == 0) {
    limits.rlim_cur = std::min(most, limits.rlim_max);
    ::setrlimit(RLIMIT_AS, &limits);
  }
}

void setTimer(int timer, std::chrono::milliseconds time) {
  struct itimerval value = {};
  value.it_value.tv_sec = time.count() / 1000;
  value.it_value.tv_usec = time.count() % 1000 * 1000;
  ::setitimer(static_cast<__itimer_which_t>(timer), &value, nullptr);
}

[[noreturn]] void endWithoutMemory() {
  shared->isOutOfMemory = true;
  std::abort();
}

/// The interpreter does not go on without memory.
void onPanic(const char* format, ...) {
  if (std::strncmp(format, "unable to ", std::strlen("unable to ")) == 0) {
    endWithoutMemory();
  }
  std::abort();
}

void limitResources() {
  if (!IS_SANITIZED) {
    limit(RLIMIT_AS, MEMORY_OF_THE_RUN);
  }
  limit(RLIMIT_CPU, PROCESSOR_SECONDS_OF_THE_RUN);
  limit(RLIMIT_CORE, 0);
  setTimer(ITIMER_REAL, granted.wait);
  Tcl_SetPanicProc(&onPanic);
}

[[noreturn]] void runWithinLimits(const std::function<int()>& work) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  limitResources();
  try {
    std::exit(work());
  } catch (const std::bad_alloc&) {
    endWithoutMemory();
  }
}

void share() {
  void* const page =
      ::mmap(nullptr, sizeof *shared, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) {
    throw std::system_error(errno, std::generic_category(), "mmap");
  }
  shared = new (page) Shared{};
}

void unshare() {
  ::munmap(shared, sizeof *shared);
  shared = nullptr;
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

std::string causeOf(int signal) {
  if (shared->isOutOfMemory) {
    return fmt::format("the command needs more than {} MiB of memory", granted.memory >> 20);
  }
  if (signal == SIGPROF) {
    return fmt::format("the command has run for more than {} s of processor time",
                       static_cast<double>(granted.processorTime.count()) / 1000);
  }
  if (signal == SIGALRM) {
    return fmt::format("the run has not ended for {} s", static_cast<double>(granted.wait.count()) / 1000);
  }
  return fmt::format("the script has brought the interpreter down ({})", ::strsignal(signal));
}

}  // namespace

int runGuarded(const std::string& file, const std::function<int()>& work, std::ostream& err,
               const Allowance& allowance) {
  share();
  granted = allowance;
  const pid_t child = ::fork();
  if (child < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    runWithinLimits(work);
  }
  const int status = waitFor(child);
  if (WIFSIGNALED(status)) {
    err << format({file, shared->line, causeOf(WTERMSIG(status)), "", 0, 0});
  }
  unshare();
  return WIFSIGNALED(status) ? 1 : WEXITSTATUS(status);
}

void noteLine(std::size_t line) {
  if (shared == nullptr) {
    return;
  }
  const bool isRunning = line != 0;
  if (isRunning != (shared->line != 0)) {
    limitMemory(isRunning ? granted.memory : MEMORY_OF_THE_RUN);
  }
  shared->line = line;
  setTimer(ITIMER_PROF, isRunning ? granted.processorTime : std::chrono::milliseconds(0));
}

}  // namespace vestra::design_tool
