// The calls that start programs: each program gets what it needs to be observed, and where that
// does not do, it is noted.

#include <alloca.h>
#include <dlfcn.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "intercept/environment.h"
#include "intercept/intercept.h"

namespace vestra::intercept {
namespace {

/// The C library's function behind one that is defined here. Found before the first fork: in a
/// child, the loader's lock may be held by a thread that does not exist there.
template <auto function>
decltype(function) nextOf(const char* symbol) {
  static decltype(function) next = nullptr;
  if (next == nullptr) {
    next = reinterpret_cast<decltype(function)>(lookUp(RTLD_NEXT, symbol));
  }
  return next;
}

#define NEXT(function) nextOf<&::function>(#function)

void noteUnobserved(const char* program, char* const* environment) {
  const Unobservable judged = judgeProgram(program);
  if (judged.reason != nullptr) {
    note(UNOBSERVED_RECORD, {judged.path, judged.reason});
  } else if (isCleared(environment)) {
    note(UNOBSERVED_RECORD, {program, OWN_ENVIRONMENT});
  }
}

/// Calls the function with a program's path as execvp finds it, or with its name.
template <typename Call>
void withPathOf(const char* program, Call call) {
  const char* path = variable("PATH");
  if (std::strchr(program, '/') != nullptr || path == nullptr) {
    return call(program);
  }
  const std::size_t name = std::strlen(program);
  char file[PATH_MAX];
  while (true) {
    const std::size_t length = std::strcspn(path, ":");
    if (length + name + 2 <= sizeof file) {
      std::memcpy(file, path, length);
      file[length] = '/';
      std::memcpy(file + length + 1, program, name + 1);
      if (access(file, X_OK) == 0) {
        return call(file);
      }
    }
    if (path[length] == '\0') {
      return call(program);
    }
    path += length + 1;
  }
}

/// Calls the function with the environment that the program is to get.
template <typename Call>
auto withEnvironment(const char* program, char* const* environment, Call call) {
  if (recordDirectory() == nullptr) {
    return call(environment);
  }
  withPathOf(program, [&](const char* path) { noteUnobserved(path, environment); });
  if (!isIncomplete(environment)) {
    return call(environment);
  }
  void* memory = alloca(sizeOfCompleted(environment));
  return call(static_cast<char* const*>(complete(environment, memory)));
}

/// The same for what the C library starts with this process's environment.
template <typename Call>
auto withOwnEnvironment(Call call) {
  return withEnvironment("/bin/sh", environ, [&](char* const* environment) {
    char** const own = environ;
    environ = const_cast<char**>(environment);
    const auto result = call();
    environ = own;
    return result;
  });
}

std::size_t countOf(va_list words) {
  std::size_t count = 0;
  while (va_arg(words, char*) != nullptr) {
    ++count;
  }
  return count;
}

}  // namespace

void findNextFunctions() {
  NEXT(execve);
  NEXT(execvpe);
  NEXT(fexecve);
  NEXT(popen);
  NEXT(posix_spawn);
  NEXT(posix_spawnp);
  NEXT(system);
}

}  // namespace vestra::intercept

using namespace vestra::intercept;

// The C library's names of parameters are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

extern "C" {

VESTRA_INTERPOSED int execve(const char* path, char* const* words, char* const* environment) noexcept {
  return withEnvironment(path, environment,
                         [&](char* const* completed) { return NEXT(execve)(path, words, completed); });
}

VESTRA_INTERPOSED int execv(const char* path, char* const* words) noexcept {
  return execve(path, words, environ);
}

VESTRA_INTERPOSED int execvpe(const char* file, char* const* words, char* const* environment) noexcept {
  return withEnvironment(file, environment,
                         [&](char* const* completed) { return NEXT(execvpe)(file, words, completed); });
}

VESTRA_INTERPOSED int execvp(const char* file, char* const* words) noexcept {
  return execvpe(file, words, environ);
}

VESTRA_INTERPOSED int fexecve(int file, char* const* words, char* const* environment) noexcept {
  char path[32];
  std::snprintf(path, sizeof path, "/proc/self/fd/%d", file);
  return withEnvironment(path, environment,
                         [&](char* const* completed) { return NEXT(fexecve)(file, words, completed); });
}

// The words of these stand one by one in the call, behind the first.
#define WORDS(first)                                                       \
  va_list list;                                                            \
  va_start(list, first);                                                   \
  va_list counted;                                                         \
  va_copy(counted, list);                                                  \
  const std::size_t count = countOf(counted) + 1;                          \
  va_end(counted);                                                         \
  auto** words = static_cast<char**>(alloca((count + 1) * sizeof(char*))); \
  words[0] = const_cast<char*>(first);                                     \
  for (std::size_t i = 1; i <= count; ++i) {                               \
    words[i] = va_arg(list, char*);                                        \
  }

VESTRA_INTERPOSED int execl(const char* path, const char* first, ...) noexcept {
  WORDS(first)
  va_end(list);
  return execve(path, words, environ);
}

VESTRA_INTERPOSED int execlp(const char* file, const char* first, ...) noexcept {
  WORDS(first)
  va_end(list);
  return execvpe(file, words, environ);
}

VESTRA_INTERPOSED int execle(const char* path, const char* first, ...) noexcept {
  WORDS(first)
  char* const* environment = va_arg(list, char* const*);
  va_end(list);
  return execve(path, words, environment);
}

VESTRA_INTERPOSED int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                                  const posix_spawnattr_t* attributes, char* const* words,
                                  char* const* environment) {
  return withEnvironment(path, environment, [&](char* const* completed) {
    return NEXT(posix_spawn)(process, path, actions, attributes, words, completed);
  });
}

VESTRA_INTERPOSED int posix_spawnp(pid_t* process, const char* file,
                                   const posix_spawn_file_actions_t* actions,
                                   const posix_spawnattr_t* attributes, char* const* words,
                                   char* const* environment) {
  return withEnvironment(file, environment, [&](char* const* completed) {
    return NEXT(posix_spawnp)(process, file, actions, attributes, words, completed);
  });
}

VESTRA_INTERPOSED FILE* popen(const char* command, const char* mode) {
  return withOwnEnvironment([&] { return NEXT(popen)(command, mode); });
}

VESTRA_INTERPOSED int system(const char* command) {
  const auto next = NEXT(system);
  if (command == nullptr || recordDirectory() == nullptr) {
    return next(command);
  }
  return withOwnEnvironment([&] { return runCommand(command, next); });
}
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
