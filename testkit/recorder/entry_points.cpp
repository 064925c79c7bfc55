// The library's entry points stand before its own, which do the work: what the host
// hands over is known byte for byte, whatever the script makes of it.

#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include <vestra/vestra.h>

#include "recorder/recording.h"
#include "recorder/send_call.h"

namespace vestra::testkit {
namespace {

using intercept::note;

constexpr char ADD[] = "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE";
constexpr char SEND[] = "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE";
constexpr char INTERNAL[] = "_ZN3Oza6Vestra8internalEv";
#define LOG_FILE_NAME "_ZN3Oza6Vestra14getLogFileNameB5cxx11Ev"

std::atomic<bool> calledUnrecorded{false};

bool isRecording() {
  if (intercept::recordDirectory() == nullptr) {
    calledUnrecorded = true;
    return false;
  }
  return true;
}

template <typename Function>
Function own(const char* symbol) {
  return reinterpret_cast<Function>(intercept::ownOf(symbol));
}

/// A number's text.
struct Digits {
  explicit Digits(unsigned int number) { std::snprintf(text, sizeof text, "%u", number); }
  operator std::string_view() const { return text; }

  char text[16];
};

/// One call of `send`, from its beginning. Without an outcome, the process ended in it.
class NotedSend {
 public:
  NotedSend(const char* projectDir, Oza::Vestra::ProductType productType) : product(productType) {
    char here[PATH_MAX] = "";
    const bool isRelative = projectDir != nullptr && *projectDir != '/';
    if (isRelative && getcwd(here, sizeof here) == nullptr) {
      *here = '\0';
    }
    std::snprintf(directory, sizeof directory, "%s%s%s", here, isRelative ? "/" : "",
                  projectDir != nullptr ? projectDir : "");
    noteOutcome("begun");
  }

  /// @param details  joined fields of the exception that is the outcome
  void noteOutcome(const char* outcome, std::string_view details = "") const {
    if (isRecording()) {
      note("sends", {number, directory, product, outcome, details});
    }
  }

  static void noteThrown(const void* call, const std::string_view* fields, std::size_t count) {
    const std::size_t size = intercept::sizeOfJoined(fields, count);
    auto* details = static_cast<char*>(std::malloc(size));
    intercept::joinFields(fields, count, details);
    static_cast<const NotedSend*>(call)->noteOutcome("threw", {details, size});
    std::free(details);
  }

 private:
  NumberText number = nextNumber();
  char directory[2 * PATH_MAX];
  Digits product;
};

}  // namespace

// Takes and returns the place of the string, as the compiler passes it: the class would need the
// C++ library here.
VESTRA_INTERPOSED void* logFileName(void* result) asm(LOG_FILE_NAME);
void* logFileName(void* result) {
  isRecording();
  return own<void* (*)(void*)>(LOG_FILE_NAME)(result);
}

bool wasCalledUnrecorded() { return calledUnrecorded; }

}  // namespace vestra::testkit

namespace Oza {

using namespace vestra::testkit;

VESTRA_INTERPOSED void Vestra::add(const char* key, const char* value, SectionType section) {
  own<void (*)(const char*, const char*, SectionType)>(ADD)(key, value, section);
  if (isRecording()) {
    vestra::intercept::note("added", {nextNumber(), Digits(section), key, value});
  }
}

VESTRA_INTERPOSED bool Vestra::send(const char* projectDir, ProductType product) {
  const NotedSend noted(projectDir, product);
  const bool answer = sendCall()(own<SendFunction>(SEND), projectDir, product, NotedSend::noteThrown, &noted);
  noted.noteOutcome(answer ? "true" : "false");
  return answer;
}

VESTRA_INTERPOSED bool Vestra::internal() {
  isRecording();
  return own<bool (*)()>(INTERNAL)();
}

}  // namespace Oza

namespace vestra::intercept {

EntryPoint entryPoints[] = {
    {testkit::ADD, reinterpret_cast<void*>(&Oza::Vestra::add), nullptr},
    {testkit::SEND, reinterpret_cast<void*>(&Oza::Vestra::send), nullptr},
    {testkit::INTERNAL, reinterpret_cast<void*>(&Oza::Vestra::internal), nullptr},
    {LOG_FILE_NAME, reinterpret_cast<void*>(&testkit::logFileName), nullptr},
    {nullptr, nullptr, nullptr},
};

// A library that lacks entry points is a file of its own.
bool isMissing(const char*) { return false; }

const char* supportLibraryFor(const void*) {
  const char* path = carried("SUPPORT");
  return path == nullptr || *path != '\0' ? path : nullptr;
}

}  // namespace vestra::intercept
