// A host that loads the library for each report and lets go of it, and goes on:
//
//     unloading_host LIBRARY PROJECT_DIRECTORY
//
// It ends with 0 when each report went as it should and the library was gone after it.

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

namespace {

using Add = void (*)(const char*, const char*, std::uint32_t);
using Send = bool (*)(const char*, std::uint32_t);

constexpr std::uint32_t KELVO = 0;
constexpr std::uint32_t KELVO_ALT = 1;
constexpr std::uint32_t KELVO_USAGE = 3;

bool isMapped(const std::string& library) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(library.substr(library.rfind('/'))) != std::string::npos) {
      return true;
    }
  }
  return false;
}

bool report(const char* library, const char* project, std::uint32_t product) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::cerr << dlerror() << '\n';
    std::exit(EXIT_FAILURE);
  }
  const auto add = reinterpret_cast<Add>(dlsym(handle, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE"));
  const auto send = reinterpret_cast<Send>(dlsym(handle, "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE"));
  add("runs", "2", KELVO_USAGE);
  const bool sent = send(project, product);
  dlclose(handle);
  return sent;
}

void expect(bool holds, const char* what) {
  if (!holds) {
    std::cerr << "does not hold: " << what << '\n';
    std::exit(EXIT_FAILURE);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  expect(report(argv[1], argv[2], KELVO), "the first report is sent");
  expect(!isMapped(argv[1]), "the library is gone after a report that was sent");
  expect(!report(argv[1], argv[2], KELVO), "the second one is not due");
  expect(!isMapped(argv[1]), "the library is gone after a report that was not due");
  expect(report(argv[1], argv[2], KELVO_ALT), "the other slot's report is sent");
  return EXIT_SUCCESS;
}
