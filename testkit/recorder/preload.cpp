// Preloaded under the support library's own name (SONAME), so that no search for that library
// finds another one: neither by RPATH nor by LD_LIBRARY_PATH.

#include <dlfcn.h>

#include "recorder/noted_send.h"

namespace {

[[gnu::constructor]] void begin() { vestra::testkit::beginRecording(); }

/// Asks the run's support library; one that the host is to miss answers null.
template <typename... Arguments>
const char* ask(const char* symbol, Arguments... arguments) {
  using namespace vestra::intercept;
  void* library = dlopen(SUPPORT_LIBRARY, RTLD_LAZY);
  auto* function = library != nullptr ? lookUp(library, symbol) : nullptr;
  return function != nullptr ? reinterpret_cast<const char* (*)(Arguments...)>(function)(arguments...)
                             : nullptr;
}

}  // namespace

bool vestra::testkit::callSend(SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
                               const NotedSend&) {
  return send(projectDir, product);
}

extern "C" {

VESTRA_INTERPOSED const char* oza_vestra_exec_path() { return ask("oza_vestra_exec_path"); }

VESTRA_INTERPOSED const char* oza_vestra_regid(const char* purpose) {
  return ask("oza_vestra_regid", purpose);
}

VESTRA_INTERPOSED const char* oza_vestra_enviroment_data(const char* product) {
  return ask("oza_vestra_enviroment_data", product);
}
}
