// A support library that never answers.

#include <unistd.h>

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))

namespace {

const char* waitForEver() {
  while (true) {
    pause();
  }
}

}  // namespace

ENTRY_POINT const char* oza_vestra_exec_path() { return waitForEver(); }
ENTRY_POINT const char* oza_vestra_regid(const char*) { return waitForEver(); }
ENTRY_POINT const char* oza_vestra_enviroment_data(const char*) { return waitForEver(); }
