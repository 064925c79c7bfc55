#include "design_tool/limits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include <sys/resource.h>
#include <tcl.h>
#include <unistd.h>

#include "reading/visible_text.h"
#include "sanitizers.h"

namespace vestra::design_tool {
namespace {

constexpr rlim_t PROCESSOR_SECONDS = 60;
constexpr rlim_t MEMORY = rlim_t{2} << 30;

/// Made beforehand: when it is needed, there is no memory.
std::string memoryMessage;

[[noreturn]] void onMemoryExhausted() {
  static_cast<void>(!::write(STDERR_FILENO, memoryMessage.data(), memoryMessage.size()));
  ::_exit(1);
}

/// Tcl panics where an allocation fails.
void onPanic(const char* format, ...) {
  if (std::strncmp(format, "unable to ", std::strlen("unable to ")) == 0) {
    onMemoryExhausted();
  }
  std::abort();
}

void limit(__rlimit_resource_t resource, rlim_t most) {
  struct rlimit limits = {};
  if (::getrlimit(resource, &limits) == 0) {
    limits.rlim_cur = std::min(limits.rlim_cur, most);
    ::setrlimit(resource, &limits);
  }
}

}  // namespace

void limitResources(const std::string& file) {
  memoryMessage = reading::forTerminal(file) + ": the script takes too much memory\n";
  limit(RLIMIT_CPU, PROCESSOR_SECONDS);
  // Sanitizers reserve terabytes of address space.
  if (!HAS_ADDRESS_SANITIZER && !HAS_THREAD_SANITIZER) {
    limit(RLIMIT_AS, MEMORY);
  }
  Tcl_SetPanicProc(&onPanic);
  std::set_new_handler(&onMemoryExhausted);
}

}  // namespace vestra::design_tool
