// The stub support library: it asks the real one for registration and environment, and never
// names the real design tool.

#include "rehearse/support_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <vector>

#include "intercept/intercept.h"

namespace vestra::inspect {
namespace {

using intercept::SUPPORT_LIBRARY;

void* realLibrary = nullptr;

/// The loader goes on behind a library for another class of machine, and behind no other.
bool isSkipped(const std::string& path) {
  unsigned char identification[EI_NIDENT] = {};
  std::ifstream in(path, std::ios::binary);
  in.read(reinterpret_cast<char*>(identification), sizeof identification);
  return !in || (std::memcmp(identification, ELFMAG, SELFMAG) == 0 && identification[EI_CLASS] != ELFCLASS64);
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// One that is loaded already, by LD_PRELOAD for example, is found without a search.
std::string loadedLibrary(const link_map* objects) {
  for (; objects != nullptr; objects = objects->l_next) {
    if (endsWith(objects->l_name, std::string("/") + SUPPORT_LIBRARY)) {
      return objects->l_name;
    }
  }
  return "";
}

/// The directories where the loader looks on behalf of an object, in its order.
class SearchPath {
 public:
  explicit SearchPath(const link_map* object) {
    void* handle = dlopen(object->l_name, RTLD_LAZY | RTLD_NOLOAD);
    Dl_serinfo size{};
    if (handle == nullptr || dlinfo(handle, RTLD_DI_SERINFOSIZE, &size) != 0) {
      return;
    }
    std::vector<char> memory(size.dls_size);
    auto* info = reinterpret_cast<Dl_serinfo*>(memory.data());
    std::memcpy(info, &size, sizeof size);
    if (dlinfo(handle, RTLD_DI_SERINFO, info) == 0) {
      for (unsigned int i = 0; i < info->dls_cnt; ++i) {
        const Dl_serpath& place = info->dls_serpath[i];
        ((place.dls_flags & LA_SER_DEFAULT) != 0 ? defaults : own).emplace_back(place.dls_name);
      }
    }
    dlclose(handle);
  }

  std::vector<std::string> own;
  /// Behind the loader's cache.
  std::vector<std::string> defaults;
};

/// @return Whether the search ends here.
bool openIn(const std::vector<std::string>& directories) {
  for (const std::string& directory : directories) {
    const std::string path = directory + "/" + SUPPORT_LIBRARY;
    if (access(path.c_str(), R_OK) == 0 && !isSkipped(path)) {
      realLibrary = dlopen(path.c_str(), RTLD_LAZY);
      return true;
    }
  }
  return false;
}

/// Opens what the object would have got.
void openRealLibrary(const void* caller) {
  Dl_info info{};
  link_map* object = nullptr;
  if (realLibrary != nullptr ||
      dladdr1(caller, &info, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0) {
    return;
  }
  const link_map* first = object;
  while (first->l_prev != nullptr) {
    first = first->l_prev;
  }
  const std::string loaded = loadedLibrary(first);
  const SearchPath path(object);
  const char* cached = intercept::carried("SUPPORT");
  if (!loaded.empty()) {
    realLibrary = dlopen(loaded.c_str(), RTLD_LAZY);
  } else if (!openIn(path.own)) {
    if (cached != nullptr) {
      realLibrary = dlopen(cached, RTLD_LAZY);
    } else {
      openIn(path.defaults);
    }
  }
}

template <typename... Arguments>
const char* ask(const void* caller, const char* symbol, Arguments... arguments) {
  openRealLibrary(caller);
  using Function = const char* (*)(Arguments...);
  void* function = realLibrary != nullptr ? intercept::lookUp(realLibrary, symbol) : nullptr;
  return function != nullptr ? reinterpret_cast<Function>(function)(arguments...) : nullptr;
}

/// Trivially destructible: libraries may be asked from static destructors.
std::string& toolThatWasNamed() {
  static auto* tool = new std::string;
  return *tool;
}

}  // namespace

std::string stubTool() {
  const char* tool = intercept::carried("TOOL");
  return tool != nullptr ? tool : "false";
}

const std::string& realTool() { return toolThatWasNamed(); }

}  // namespace vestra::inspect

namespace vestra::intercept {

// The name leads to the stub, which is loaded already: this object.
const char* supportLibraryFor(const void* caller) {
  inspect::openRealLibrary(caller);
  return inspect::realLibrary != nullptr ? SUPPORT_LIBRARY : nullptr;
}

bool isMissing(const char* symbol) {
  return inspect::realLibrary != nullptr && std::strncmp(symbol, "oza_vestra_", 11) == 0 &&
         lookUp(inspect::realLibrary, symbol) == nullptr;
}

}  // namespace vestra::intercept

using namespace vestra::inspect;

extern "C" {

VESTRA_INTERPOSED const char* oza_vestra_exec_path() {
  const char* tool = ask(__builtin_return_address(0), "oza_vestra_exec_path");
  if (tool == nullptr) {
    return nullptr;
  }
  toolThatWasNamed() = tool;
  static const auto* stub = new std::string(stubTool());
  return stub->c_str();
}

VESTRA_INTERPOSED const char* oza_vestra_regid(const char* purpose) {
  return ask(__builtin_return_address(0), "oza_vestra_regid", purpose);
}

VESTRA_INTERPOSED const char* oza_vestra_enviroment_data(const char* product) {
  return ask(__builtin_return_address(0), "oza_vestra_enviroment_data", product);
}
}
