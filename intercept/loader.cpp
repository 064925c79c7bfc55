// The calls that open libraries and look functions up.

#include <dlfcn.h>
#include <link.h>

#include <cstdint>
#include <cstring>

#include "intercept/intercept.h"

namespace vestra::intercept {
namespace {

using DlSym = void* (*)(void*, const char*);
using DlOpen = void* (*)(const char*, int);

constexpr char NO_LIBRARY[] = "/nonexistent/libqvzcommonvestrasupport.so";

// dlsym is called before the C library is initialised: by sanitizers, and for what follows by us.
bool isSame(const char* left, const char* right) {
  while (*left != '\0' && *left == *right) {
    ++left;
    ++right;
  }
  return *left == *right;
}

bool isThisObject(const void* address) {
  return objectOf(address) == objectOf(reinterpret_cast<const void*>(&isThisObject));
}

/// What an object or the libraries that it needs define, but for what is defined here.
void* definedFor(void* handle, const char* symbol) {
  void* found = lookUp(handle, symbol);
  return found != nullptr && !isThisObject(found) ? found : nullptr;
}

EntryPoint* entryPointOf(const char* symbol) {
  for (EntryPoint* entry = entryPoints; entry->symbol != nullptr; ++entry) {
    if (isSame(entry->symbol, symbol)) {
      return entry;
    }
  }
  return nullptr;
}

}  // namespace
}  // namespace vestra::intercept

using namespace vestra::intercept;

extern "C" {

// Where the functions below jump to, so that the C library sees who called them.
__attribute__((visibility("hidden"))) DlSym vestra_intercept_next_dlsym = nullptr;
__attribute__((visibility("hidden"))) DlOpen vestra_intercept_next_dlopen = nullptr;

/// In two registers: whether there is an answer, and which.
struct VestraInterceptAnswer {
  std::uint64_t isAnswered;
  void* answer;
};

__attribute__((visibility("hidden"))) VestraInterceptAnswer vestra_intercept_dlsym(void* handle,
                                                                                   const char* symbol) {
  static_cast<void>(lookUp(nullptr, nullptr));
  // Where the caller decides what is found, the loader's order does without us.
  if (handle == RTLD_NEXT || handle == RTLD_DEFAULT) {
    return {0, nullptr};
  }
  if (isMissing(symbol)) {
    return {1, nullptr};
  }
  EntryPoint* entry = entryPointOf(symbol);
  void* found = entry != nullptr ? definedFor(handle, symbol) : nullptr;
  if (found == nullptr) {
    return {0, nullptr};
  }
  entry->own = found;
  return {1, entry->replacement};
}

struct VestraInterceptOpening {
  const char* file;
  std::uint64_t flags;
};

// With RTLD_DEEPBIND, the library's calls would not be seen here.
__attribute__((visibility("hidden"))) VestraInterceptOpening vestra_intercept_dlopen(const char* file,
                                                                                     int flags,
                                                                                     const void* caller) {
  if (vestra_intercept_next_dlopen == nullptr) {
    vestra_intercept_next_dlopen = reinterpret_cast<DlOpen>(lookUp(RTLD_NEXT, "dlopen"));
  }
  if (recordDirectory() == nullptr) {
    return {file, static_cast<std::uint64_t>(flags)};
  }
  if (file != nullptr && isSame(file, SUPPORT_LIBRARY)) {
    file = supportLibraryFor(caller);
    file = file != nullptr ? file : NO_LIBRARY;
  }
  return {file, static_cast<std::uint64_t>(flags & ~RTLD_DEEPBIND)};
}

__attribute__((naked)) VESTRA_INTERPOSED void* dlsym(void*, const char*) noexcept {
  asm("push %rdi\n"
      "push %rsi\n"
      "sub $8, %rsp\n"
      "call vestra_intercept_dlsym\n"
      "add $8, %rsp\n"
      "pop %rsi\n"
      "pop %rdi\n"
      "test %rax, %rax\n"
      "jne 1f\n"
      "jmp *vestra_intercept_next_dlsym(%rip)\n"
      "1: mov %rdx, %rax\n"
      "ret");
}

__attribute__((naked)) VESTRA_INTERPOSED void* dlopen(const char*, int) noexcept {
  asm("mov (%rsp), %rdx\n"
      "sub $8, %rsp\n"
      "call vestra_intercept_dlopen\n"
      "add $8, %rsp\n"
      "mov %rax, %rdi\n"
      "mov %edx, %esi\n"
      "jmp *vestra_intercept_next_dlopen(%rip)");
}
}

namespace vestra::intercept {
namespace {

/// The library may have been opened with RTLD_LOCAL, as a plug-in's.
void* definedInAnyObject(const char* symbol) {
  const auto* object = static_cast<const link_map*>(vestra_intercept_next_dlopen(nullptr, RTLD_LAZY));
  for (; object != nullptr; object = object->l_next) {
    void* handle = vestra_intercept_next_dlopen(object->l_name, RTLD_LAZY | RTLD_NOLOAD);
    void* found = handle != nullptr ? definedFor(handle, symbol) : nullptr;
    if (handle != nullptr) {
      dlclose(handle);
    }
    if (found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

}  // namespace

void* lookUp(void* handle, const char* symbol) {
  if (vestra_intercept_next_dlsym == nullptr) {
    void* next = dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
    next = next != nullptr ? next : dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5");
    vestra_intercept_next_dlsym = reinterpret_cast<DlSym>(next);
  }
  return symbol != nullptr ? vestra_intercept_next_dlsym(handle, symbol) : nullptr;
}

const void* objectOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

void* ownOf(const char* symbol) {
  const EntryPoint* entry = entryPointOf(symbol);
  if (entry != nullptr && entry->own != nullptr) {
    return entry->own;
  }
  void* found = lookUp(RTLD_NEXT, symbol);
  if (found == nullptr) {
    vestra_intercept_dlopen(nullptr, 0, nullptr);
    found = definedInAnyObject(symbol);
  }
  return found;
}

}  // namespace vestra::intercept
