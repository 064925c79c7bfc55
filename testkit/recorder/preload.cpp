// Preloaded under the support library's own name (SONAME), so that no search for that library
// finds another one: neither by RPATH nor by LD_LIBRARY_PATH.

#include <dlfcn.h>

#include <cstdio>

#include "recorder/recording.h"
#include "recorder/send_call.h"

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

/// In a library beside this object, which is loaded where it is needed.
vestra::testkit::SendCall loadedSendCall() {
  constexpr const char* NAME = "libvestra_testkit_send_call.so";
  char path[PATH_MAX];
  const char* preloaded = vestra::intercept::carried("PRELOAD");
  const std::string_view self = preloaded != nullptr ? preloaded : "";
  const auto directory = static_cast<int>(self.rfind('/') + 1);
  std::snprintf(path, sizeof path, "%.*s%s", directory, self.data(), NAME);
  void* library = dlopen(path, RTLD_NOW);
  void* call = library != nullptr ? vestra::intercept::lookUp(library, "vestra_testkit_call_send") : nullptr;
  return reinterpret_cast<vestra::testkit::SendCall>(call);
}

bool callUnnoted(vestra::testkit::SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
                 vestra::testkit::NoteThrown, const void*) {
  return send(projectDir, product);
}

}  // namespace

vestra::testkit::SendCall vestra::testkit::sendCall() {
  static const SendCall loaded = loadedSendCall();
  return loaded != nullptr ? loaded : callUnnoted;
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
