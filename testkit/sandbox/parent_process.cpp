#include "sandbox/parent_process.h"

#include <dlfcn.h>

#include <iterator>
#include <stdexcept>
#include <string>

#include <boost/filesystem.hpp>

#include "recorder/recording.h"
#include "sanitizers.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

/// Where the library that holds an address begins.
const void* libraryOf(const void* address) {
  Dl_info info{};
  dladdr(address, &info);
  return info.dli_fbase;
}

/// But for the thread sanitizer's own, which it takes care of itself.
long threads() {
  const fs::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks)) - (HAS_THREAD_SANITIZER ? 1 : 0);
}

}  // namespace

void requireTestKitFirst() {
  if (libraryOf(dlsym(RTLD_DEFAULT, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE")) !=
      libraryOf(reinterpret_cast<const void*>(&requireTestKitFirst))) {
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
