// The library's entry points stand before its own, which do the work: what the host
// hands over is known byte for byte, whatever the script makes of it.

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include <vestra/vestra.h>

#include "recorder/exception.h"
#include "recorder/fields.h"
#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

std::atomic<bool> calledUnrecorded{false};

/// The library's own entry point. A library that was opened by name, as plug-ins are,
/// does not stand behind this one, and is asked itself.
template <typename Function>
Function ownOf(const char* symbol) {
  void* found = dlsym(RTLD_NEXT, symbol);
  if (found == nullptr) {
    if (void* library = dlopen("libvestra.so.1", RTLD_LAZY | RTLD_NOLOAD)) {
      found = dlsym(library, symbol);
    }
  }
  return reinterpret_cast<Function>(found);
}

bool isRecording() {
  if (recordDirectory().empty()) {
    calledUnrecorded = true;
    return false;
  }
  return true;
}

std::string absolute(const std::string& path) {
  if (path.rfind('/', 0) == 0) {
    return path;
  }
  char* here = getcwd(nullptr, 0);
  const std::string directory = here != nullptr ? here : "";
  std::free(here);
  return directory + "/" + path;
}

/// One call of `send`, from its beginning.
class NotedSend {
 public:
  NotedSend(const char* projectDir, Oza::Vestra::ProductType productType)
      : directory(projectDir != nullptr ? absolute(projectDir) : ""), product(std::to_string(productType)) {
    noteOutcome("begun");
  }

  /// @param details  of the exception that is its outcome
  void noteOutcome(const char* outcome, const std::string& details = {}) const {
    if (isRecording()) {
      note("sends", {number, directory, product, outcome, details});
    }
  }

 private:
  std::string number = nextNumber();
  std::string directory;
  std::string product;
};

}  // namespace

bool wasCalledUnrecorded() { return calledUnrecorded; }

}  // namespace vestra::testkit

namespace Oza {

using namespace vestra::testkit;

VESTRA_EXPORT void Vestra::add(const char* key, const char* value, SectionType section) {
  using Add = void (*)(const char*, const char*, SectionType);
  static const auto own = ownOf<Add>("_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE");
  own(key, value, section);
  if (isRecording()) {
    note("added", {nextNumber(), std::to_string(section), key, value});
  }
}

VESTRA_EXPORT bool Vestra::send(const char* projectDir, ProductType product) {
  using Send = bool (*)(const char*, ProductType);
  static const auto own = ownOf<Send>("_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE");
  const NotedSend noted(projectDir, product);
  try {
    const bool answer = own(projectDir, product);
    noted.noteOutcome(answer ? "true" : "false");
    return answer;
  } catch (...) {
    noted.noteOutcome("threw", joinedFields(fieldsOf(caughtException())));
    throw;
  }
}

VESTRA_EXPORT bool Vestra::internal() {
  static const auto own = ownOf<bool (*)()>("_ZN3Oza6Vestra8internalEv");
  isRecording();
  return own();
}

VESTRA_EXPORT std::string Vestra::getLogFileName() {
  static const auto own = ownOf<std::string (*)()>("_ZN3Oza6Vestra14getLogFileNameB5cxx11Ev");
  isRecording();
  return own();
}

}  // namespace Oza
