// A host that was linked against nothing of Vestra's and has none of its headers: it
// opens the library when it wants to report, calls the entry points by their names in
// the binary, closes it, and goes on.
//
//     host LIBRARY PROJECT_DIRECTORY

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

class Library {
 public:
  explicit Library(const char* file) : handle(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
      throw std::runtime_error(dlerror());
    }
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { dlclose(handle); }

  template <typename Function>
  Function* function(const char* name) const {
    void* const found = dlsym(handle, name);
    if (found == nullptr) {
      throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<Function*>(found);
  }

 private:
  void* handle;
};

void expect(bool holds, const char* what) {
  if (!holds) {
    throw std::runtime_error(std::string("host: not true: ") + what);
  }
}

constexpr std::uint32_t KELVO = 0;
constexpr std::uint32_t KELVO_ALT = 1;

bool report(const Library& vestra, const char* project, std::uint32_t product) {
  constexpr std::uint32_t KELVO_USAGE = 3;
  const auto add = vestra.function<void(const char*, const char*, std::uint32_t)>(
      "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE");
  const auto send =
      vestra.function<bool(const char*, std::uint32_t)>("_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE");
  const auto internal = vestra.function<bool()>("_ZN3Oza6Vestra8internalEv");
  const auto logFileName = vestra.function<std::string()>("_ZN3Oza6Vestra14getLogFileNameB5cxx11Ev");

  std::cout << "host: on an " << (internal() ? "internal" : "external") << " machine\n";
  add("runs", "2", KELVO_USAGE);
  const bool sent = send(project, product);
  expect(logFileName() == std::string(project) + "/vestra/tavlo_vestra.log", "the log lies in the project");
  return sent;
}

bool isLoaded(const char* file) { return dlopen(file, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

void run(const char* file, const char* project) {
  expect(report(Library(file), project, KELVO), "the first report is sent");
  expect(!isLoaded(file), "a closed library is gone");
  std::cout << "host: the report was handed over\n";
  expect(!report(Library(file), project, KELVO), "a second report is not due on the same day");
  expect(report(Library(file), project, KELVO_ALT), "the other slot's report is sent");
  std::cout << "host: opened it again, and goes on without it\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: host LIBRARY PROJECT_DIRECTORY\n";
    return EXIT_FAILURE;
  }
  try {
    run(argv[1], argv[2]);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
