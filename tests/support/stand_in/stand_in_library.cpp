#include "support/stand_in/stand_in_library.h"

#include <dlfcn.h>

#include <stdexcept>

#include "handler/support_library.h"

namespace vestra_test {
namespace {

constexpr const char* NAME = "libqvzcommonvestrasupport.so";

void* symbolIn(void* handle, const char* symbol) {
  void* address = dlsym(handle, symbol);
  if (address == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return address;
}

/// One more hold on the library, or null when it is not in the process.
void* holdIfLoaded() { return dlopen(NAME, RTLD_LAZY | RTLD_NOLOAD); }

}  // namespace

StandInLibrary::StandInLibrary(const std::string& variant)
    : handle(dlopen((STAND_IN_LIBRARIES "/" + variant + "/" + NAME).c_str(), RTLD_NOW)) {
  if (handle == nullptr) {
    throw std::runtime_error(dlerror());
  }
  nameTool("/bin/true");
  nameRegistration("REG-1");
  describeEnvironment("a#1#b#2#c#3#d#4#e#5#f#6");
}

StandInLibrary::~StandInLibrary() {
  if (void* held = holdIfLoaded()) {
    Oza::support_library::close(held);
  }
  while (void* held = holdIfLoaded()) {
    dlclose(held);
    dlclose(held);
  }
}

void StandInLibrary::nameTool(const std::optional<std::string>& command) {
  answer("stand_in_exec_path", tool, command);
}

void StandInLibrary::nameRegistration(const std::optional<std::string>& identifier) {
  answer("stand_in_regid", registration, identifier);
}

void StandInLibrary::describeEnvironment(const std::optional<std::string>& text) {
  answer("stand_in_environment", environment, text);
}

std::string StandInLibrary::calls() const {
  return static_cast<const char*>(symbolIn(handle, "stand_in_calls"));
}

bool StandInLibrary::isHeldByAnother() {
  dlclose(handle);
  void* held = holdIfLoaded();
  if (held != nullptr) {
    dlclose(held);
  }
  return held != nullptr;
}

void StandInLibrary::answer(const char* variable, std::optional<std::string>& kept,
                            const std::optional<std::string>& text) {
  kept = text;
  *static_cast<const char**>(symbolIn(handle, variable)) = kept ? kept->c_str() : nullptr;
}

}  // namespace vestra_test
