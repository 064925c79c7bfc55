// Loaded before a host's own libraries: runs the host's reports in a private place and
// keeps them. The host's project and home stay as they are, and nothing is started.

#include <dlfcn.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>

#include <vestra/vestra.h>

#include "rehearse/fingerprint.h"
#include "rehearse/private_place.h"

namespace vestra::inspect {
namespace {

using Send = bool (*)(const char*, Oza::Vestra::ProductType);
using LogFileName = std::string (*)();

constexpr const char* SEND = "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE";
constexpr const char* LOG_FILE_NAME = "_ZN3Oza6Vestra14getLogFileNameB5cxx11Ev";

Send realSend = nullptr;
LogFileName realLogFileName = nullptr;

/// The report that this process writes right now; null in the host itself.
const PrivatePlace* current = nullptr;
/// The project of the host's last report, whose log's name it may ask for.
std::string lastProject;

// The loader and other preloaded objects ask before any library is ready, so what answers them
// calls none.

bool isSame(const char* left, const char* right) {
  while (*left != '\0' && *left == *right) {
    ++left;
    ++right;
  }
  return *left == *right;
}

/// What stands behind "name=" in an entry; null when the entry is another's.
const char* valueIn(const char* entry, const char* name) {
  while (*name != '\0' && *entry == *name) {
    ++entry;
    ++name;
  }
  return *name == '\0' && *entry == '=' ? entry + 1 : nullptr;
}

const char* variable(const char* name) {
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    if (const char* value = valueIn(*entry, name)) {
      return value;
    }
  }
  return nullptr;
}

/// Whether code of Vestra's library lies there.
bool isInLibrary(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 && info.dli_fname != nullptr &&
         std::strstr(info.dli_fname, "libvestra.so") != nullptr;
}

/// How a `send` ended: a letter, and the text of an exception.
std::string endOf(const std::string& directory, Oza::Vestra::ProductType product) {
  try {
    return realSend(directory.c_str(), product) ? "t" : "f";
  } catch (const std::logic_error& error) {
    return std::string("l") + error.what();
  } catch (const std::exception& error) {
    return std::string("r") + error.what();
  } catch (...) {
    return "r";
  }
}

/// In the child: everything that the library keeps in memory is the host's.
[[noreturn]] void report(const PrivatePlace& place, Oza::Vestra::ProductType product, int answer) {
  current = &place;
  const std::string end = endOf(place.project(), product);
  place.keepFiles();
  static_cast<void>(!write(answer, end.data(), end.size()));
  _exit(0);
}

int timeLimit() {
  const char* milliseconds = variable(LIMIT_VARIABLE);
  return milliseconds != nullptr ? std::atoi(milliseconds) : 30000;
}

/// Whether there is something to read before the moment; the host's signals do not matter.
bool waitFor(int descriptor, std::chrono::steady_clock::time_point end) {
  pollfd waiting{descriptor, POLLIN, 0};
  int ready = -1;
  do {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    ready = poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

std::string readEnd(int descriptor) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeLimit());
  std::string end;
  char piece[512];
  while (waitFor(descriptor, limit)) {
    const ssize_t length = read(descriptor, piece, sizeof piece);
    if (length <= 0) {
      return end;
    }
    end.append(piece, static_cast<std::size_t>(length));
  }
  return end;
}

/// A child that neither answers nor ends within the time is killed: nothing is known then.
std::string endInChild(const PrivatePlace& place, Oza::Vestra::ProductType product) {
  int ends[2];
  if (pipe(ends) != 0) {
    return {};
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    report(place, product, ends[1]);
  }
  close(ends[1]);
  const std::string end = child < 0 ? std::string() : readEnd(ends[0]);
  close(ends[0]);
  if (child > 0) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  return end;
}

bool rehearse(const char* directory, Oza::Vestra::ProductType product) {
  lastProject = absolutePath(directory);
  const PrivatePlace place(variable(DIRECTORY_VARIABLE), lastProject);
  const std::string end = endInChild(place, product);
  place.note("answer", end);
  switch (end.empty() ? 'f' : end.front()) {
    case 't':
      return true;
    case 'l':
      throw std::logic_error(end.substr(1));
    case 'r':
      throw std::runtime_error(end.substr(1));
    default:
      return false;
  }
}

}  // namespace
}  // namespace vestra::inspect

using namespace vestra::inspect;

extern "C" {

using DlSym = void* (*)(void*, const char*);

/// Where the wrapper below jumps to.
__attribute__((visibility("hidden"))) DlSym vestra_rehearsal_real_dlsym = nullptr;

__attribute__((visibility("default"))) void vestra_rehearsal_shim() {}

/// What a host gets for a symbol that it looks up itself; null for what is not ours.
__attribute__((visibility("hidden"))) void* vestra_rehearsal_own(void* handle, const char* symbol) {
  if (vestra_rehearsal_real_dlsym == nullptr) {
    void* real = dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
    real = real != nullptr ? real : dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5");
    vestra_rehearsal_real_dlsym = reinterpret_cast<DlSym>(real);
  }
  if (isSame(symbol, SEND)) {
    realSend = reinterpret_cast<Send>(vestra_rehearsal_real_dlsym(handle, symbol));
    return realSend != nullptr ? reinterpret_cast<void*>(&Oza::Vestra::send) : nullptr;
  }
  if (isSame(symbol, LOG_FILE_NAME)) {
    realLogFileName = reinterpret_cast<LogFileName>(vestra_rehearsal_real_dlsym(handle, symbol));
    return realLogFileName != nullptr ? reinterpret_cast<void*>(&Oza::Vestra::getLogFileName) : nullptr;
  }
  return nullptr;
}

// Leaves by a jump: what the real one answers depends on who called it.
__attribute__((naked, visibility("default"))) void* dlsym(void*, const char*) noexcept {
  asm("push %rdi\n"
      "push %rsi\n"
      "sub $8, %rsp\n"
      "call vestra_rehearsal_own\n"
      "add $8, %rsp\n"
      "pop %rsi\n"
      "pop %rdi\n"
      "test %rax, %rax\n"
      "jne 1f\n"
      "jmp *vestra_rehearsal_real_dlsym(%rip)\n"
      "1: ret");
}

// The library's own question alone gets another answer than the host's.
__attribute__((visibility("default"))) char* getenv(const char* name) noexcept {
  const char* value = variable(name);
  if (isSame(name, "HOME") && isInLibrary(__builtin_return_address(0))) {
    static const std::string home = privateHome(variable(DIRECTORY_VARIABLE), value != nullptr ? value : "");
    return const_cast<char*>(home.c_str());
  }
  return const_cast<char*>(value);
}
}

namespace {

/// What stands behind one of the functions here.
template <typename Function>
void lookUp(Function& function, const char* symbol) {
  if (function == nullptr) {
    static_cast<void>(vestra_rehearsal_own(nullptr, ""));
    function = reinterpret_cast<Function>(vestra_rehearsal_real_dlsym(RTLD_NEXT, symbol));
  }
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int system(const char* command) {
  if (isInLibrary(__builtin_return_address(0))) {
    if (current != nullptr) {
      current->note("command", current->withRealPaths(command));
      current->keepFiles();
    }
    return 0;
  }
  int (*real)(const char*) = nullptr;
  lookUp(real, "system");
  return real(command);
}
}

namespace Oza {

// Without a directory, the library itself has the answer: it throws.
__attribute__((visibility("default"))) bool Vestra::send(const char* directory, ProductType product) {
  lookUp(realSend, SEND);
  if (directory == nullptr || absolutePath(directory).empty()) {
    return realSend(directory, product);
  }
  return rehearse(directory, product);
}

__attribute__((visibility("default"))) std::string Vestra::getLogFileName() {
  lookUp(realLogFileName, LOG_FILE_NAME);
  return lastProject.empty() ? realLogFileName() : lastProject + "/vestra/tavlo_vestra.log";
}

}  // namespace Oza
