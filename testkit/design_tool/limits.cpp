#include "design_tool/limits.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>

#include <sys/resource.h>
#include <tcl.h>
#include <unistd.h>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {
namespace {

/// Sanitizers reserve terabytes of address space and report a stack overflow themselves.
#if defined(__has_feature)
constexpr bool IS_SANITIZED = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

constexpr rlim_t PROCESSOR_SECONDS = 60;
constexpr rlim_t MEMORY = rlim_t{2} << 30;
constexpr std::size_t STACK_FOR_SIGNALS = 65536;

std::string scriptFile;
volatile std::size_t currentLine = 0;

/// Called in signal handlers and without memory: allocates nothing.
[[noreturn]] void endWith(const char* reason) {
  char text[4096];
  const auto [end, size] =
      fmt::format_to_n(text, sizeof text, "{}:{}: {}\n", scriptFile, std::size_t{currentLine}, reason);
  static_cast<void>(!::write(STDERR_FILENO, text, std::min(size, sizeof text)));
  ::_exit(1);
}

void onSignal(int signal) {
  endWith(signal == SIGXCPU ? "the script takes too much processor time"
                            : "the script has crashed the interpreter");
}

[[noreturn]] void onMemoryExhausted() { endWith("the script takes too much memory"); }

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

/// On a stack of its own, since SIGSEGV is what a stack overflow raises.
void handle(int signal) {
  struct sigaction action = {};
  action.sa_handler = &onSignal;
  action.sa_flags = SA_ONSTACK;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

void limitResources(const std::string& file) {
  static char stack[STACK_FOR_SIGNALS];
  const stack_t signalStack{stack, 0, sizeof stack};
  scriptFile = reading::forTerminal(file);
  limit(RLIMIT_CPU, PROCESSOR_SECONDS);
  handle(SIGXCPU);
  if (!IS_SANITIZED) {
    ::sigaltstack(&signalStack, nullptr);
    handle(SIGSEGV);
    limit(RLIMIT_AS, MEMORY);
  }
  Tcl_SetPanicProc(&onPanic);
  std::set_new_handler(&onMemoryExhausted);
}

void noteLine(std::size_t line) { currentLine = line; }

}  // namespace vestra::design_tool
