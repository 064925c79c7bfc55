// A host that does nothing at all, with the library and without:
//
//     idle_host [OUTCOME_FILE PROJECT_DIRECTORY PRODUCT]
//
// Marks where loading has ended by the system call `kill`: given arguments, it stops
// itself there for its tracer; otherwise it sends no signal. Writes the allocations
// made until then, the threads and the open files that it has.

#include <dirent.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>

namespace {

long allocations = 0;

int entriesOf(const char* path) {
  int count = 0;
  DIR* directory = opendir(path);
  while (readdir(directory) != nullptr) {
    ++count;
  }
  closedir(directory);
  return count;
}

}  // namespace

// Everything in the process allocates by these, except where a sanitizer brings its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the C library's.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  ++allocations;
  return __libc_realloc(block, size);
}

}  // extern "C"
#endif

int main(int argc, char**) {
  const long whileLoading = allocations;
  syscall(SYS_kill, getpid(), argc > 1 ? SIGSTOP : 0);
  std::printf("%ld %d %d\n", whileLoading, entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"));
  return 0;
}
