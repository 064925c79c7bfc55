#include "sandbox/parent_process.h"

#include <dlfcn.h>

#include <iterator>
#include <stdexcept>
#include <string>

#include <boost/filesystem.hpp>

#include <vestra/vestra.h>

#include "recorder/recording.h"
#include "sandbox/locations.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

// The thread sanitizer has a thread of its own, which it takes care of itself.
#if defined(__has_feature)
constexpr bool HAS_SANITIZERS_THREAD = __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_THREAD__)
constexpr bool HAS_SANITIZERS_THREAD = true;
#else
constexpr bool HAS_SANITIZERS_THREAD = false;
#endif

long threads() {
  const fs::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks)) - (HAS_SANITIZERS_THREAD ? 1 : 0);
}

}  // namespace

void requireTestKitFirst() {
  const void* first = dlsym(RTLD_DEFAULT, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE");
  Dl_info info{};
  if (dladdr(first, &info) == 0 || fs::canonical(info.dli_fname).parent_path() != directoryOfThisLibrary() ||
      fs::path(info.dli_fname).filename().string().rfind("libvestra_testkit.", 0) != 0) {
    throw std::runtime_error(
        "this program finds Vestra before its test kit, which could not see what the host adds: link "
        "vestra::testkit before vestra::vestra, -lvestra_testkit before -lvestra");
  }
}

void requireFreshProcess() {
  if (wasCalledUnrecorded()) {
    throw std::runtime_error(
        "Vestra was called in the process that owns the sandbox, and a run would inherit what that left: "
        "call "
        "it in the code that run, runProcess or runTogether executes, and nowhere else in this program");
  }
  if (threads() > 1) {
    throw std::runtime_error("the process that owns the sandbox has " + std::to_string(threads()) +
                             " threads, of which a run would have one: end the others first, or execute the "
                             "host as a program of its own with runProgram");
  }
}

}  // namespace vestra::testkit
