#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "entry_points.h"

namespace vestra_test {
namespace {

void* checked(void* found) {
  if (found == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return found;
}

}  // namespace

EntryPoints entryPoints(const char* const* arguments) {
  const int scope = arguments[1] == std::string("global") ? RTLD_GLOBAL : RTLD_LOCAL;
  void* const library = checked(dlopen(arguments[0], RTLD_NOW | scope));
  return {reinterpret_cast<decltype(EntryPoints::add)>(
              checked(dlsym(library, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE"))),
          reinterpret_cast<decltype(EntryPoints::send)>(
              checked(dlsym(library, "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE")))};
}

}  // namespace vestra_test
