#include "handler/support_library.h"

#include <dlfcn.h>

#include <stdexcept>

#include "data/byte_string.h"

namespace Oza::support_library {
namespace {

/// One entry point: its symbol, and its address once the library is open.
template <typename... Arguments>
class EntryPoint {
 public:
  explicit constexpr EntryPoint(const char* symbolName) : symbol(symbolName) {}

  void lookUp(void* handle) { function = reinterpret_cast<Function>(dlsym(handle, symbol)); }
  void forget() { function = nullptr; }
  bool isKnown() const { return function != nullptr; }

  std::string call(Arguments... arguments) const {
    if (!isKnown()) {
      throw std::logic_error(std::string(FILE_NAME) + " lacks " + symbol);
    }
    return byteString(function(arguments...));
  }

 private:
  using Function = const char* (*)(Arguments...);

  const char* symbol;
  Function function = nullptr;
};

EntryPoint<> execPathEntry(EXEC_PATH_ENTRY);
EntryPoint<const char*> registrationEntry(REGISTRATION_ENTRY);
EntryPoint<const char*> environmentEntry(ENVIRONMENT_ENTRY);

}  // namespace

bool isOpen() { return execPathEntry.isKnown(); }

void* open() {
  void* handle = dlopen(FILE_NAME, RTLD_LAZY);
  if (handle != nullptr) {
    execPathEntry.lookUp(handle);
    registrationEntry.lookUp(handle);  // NOMUTATE(order): dlsym calls nothing.
    environmentEntry.lookUp(handle);
  }
  return handle;
}

// The next open() looks the other two up again.
void close(void* handle) {
  dlclose(handle);
  execPathEntry.forget();
}

std::string execPath() { return execPathEntry.call(); }

std::string registrationId() { return registrationEntry.call("Implementation"); }

std::string environmentData(const char* productName) { return environmentEntry.call(productName); }

}  // namespace Oza::support_library
