// The library's entry points stand before its own, which do the work: what the host
// hands over is known byte for byte, whatever the script makes of it.

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>

#include "recorder/noted_send.h"

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

}  // namespace

NotedSend::NotedSend(const char* projectDir, Oza::Vestra::ProductType productType) : product(productType) {
  char here[PATH_MAX] = "";
  const bool isRelative = projectDir != nullptr && *projectDir != '/';
  if (isRelative && getcwd(here, sizeof here) == nullptr) {
    *here = '\0';
  }
  std::snprintf(directory, sizeof directory, "%s%s%s", here, isRelative ? "/" : "",
                projectDir != nullptr ? projectDir : "");
  noteOutcome("begun");
}

void NotedSend::noteOutcome(const char* outcome, std::string_view details) const {
  if (isRecording()) {
    note("sends", {number, directory, product, outcome, details});
  }
}

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
  const bool answer = callSend(own<SendFunction>(SEND), projectDir, product, noted);
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

bool isMissing(const char* symbol) {
  const char* missing = carried("MISSING");
  return missing != nullptr && std::strncmp(symbol, "oza_vestra_", 11) == 0 &&
         std::strstr(missing, symbol) != nullptr;
}

const char* supportLibraryFor(const void*) {
  const char* path = carried("SUPPORT");
  return path == nullptr || *path != '\0' ? path : nullptr;
}

}  // namespace vestra::intercept
