// Stands ahead of the support library in a rehearsal. Registration and environment are the
// real one's; where the shim was lost, the main design tool is not.

#include <dlfcn.h>

#include <cstdlib>

#include "rehearse/fingerprint.h"

namespace {

// Opened and closed with this library, as a host opens and closes the real one.
struct RealLibrary {
  void* handle = nullptr;

  RealLibrary() {
    const char* path = std::getenv(vestra::inspect::SUPPORT_VARIABLE);
    handle = path != nullptr ? dlopen(path, RTLD_LAZY) : nullptr;
  }
  RealLibrary(const RealLibrary&) = delete;
  RealLibrary& operator=(const RealLibrary&) = delete;
  ~RealLibrary() {
    if (handle != nullptr) {
      dlclose(handle);
    }
  }

  template <typename... Arguments>
  const char* ask(const char* symbol, Arguments... arguments) const {
    using Function = const char* (*)(Arguments...);
    const auto function = handle != nullptr ? reinterpret_cast<Function>(dlsym(handle, symbol)) : nullptr;
    return function != nullptr ? function(arguments...) : nullptr;
  }
};

RealLibrary real;

bool isHeldBackByShim() { return dlsym(RTLD_DEFAULT, vestra::inspect::SHIM_MARK) != nullptr; }

}  // namespace

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))

ENTRY_POINT const char* oza_vestra_exec_path() {
  const char* tool = real.ask("oza_vestra_exec_path");
  return tool == nullptr || isHeldBackByShim() ? tool : std::getenv(vestra::inspect::CAUGHT_VARIABLE);
}

ENTRY_POINT const char* oza_vestra_regid(const char* purpose) {
  return real.ask("oza_vestra_regid", purpose);
}

ENTRY_POINT const char* oza_vestra_enviroment_data(const char* product) {
  return real.ask("oza_vestra_enviroment_data", product);
}
