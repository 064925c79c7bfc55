// A host that opens the library at run time.
//
//     opening_host LIBRARY PROJECT_DIRECTORY [deep]

#include <dlfcn.h>

#include <iostream>

int main(int count, char** words) {
  void* library = dlopen(words[1], RTLD_NOW | (count > 3 ? RTLD_DEEPBIND : RTLD_LOCAL));
  if (library == nullptr) {
    std::cout << dlerror() << '\n';
    return 1;
  }
  using Add = void (*)(const char*, const char*, unsigned int);
  using Send = bool (*)(const char*, unsigned int);
  const auto add = reinterpret_cast<Add>(dlsym(library, "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE"));
  const auto send = reinterpret_cast<Send>(dlsym(library, "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE"));
  add("runs", "2", 3);
  std::cout << (send(words[2], 0) ? "true" : "false") << '\n';
  return 0;
}
