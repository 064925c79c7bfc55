#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstring>

#include "intercept/intercept.h"

namespace vestra::intercept {
namespace {

constexpr int INTERPRETERS_AT_MOST = 4;

// The loader ignores LD_PRELOAD where the program runs with other rights than its caller.
bool changesRights(const char* path, const struct stat& status) {
  const bool changesUser = (status.st_mode & S_ISUID) != 0 && status.st_uid != getuid();
  const bool changesGroup = (status.st_mode & S_ISGID) != 0 && status.st_gid != getgid();
  return changesUser || changesGroup ||
         (getuid() != 0 && getxattr(path, "security.capability", nullptr, 0) > 0);
}

bool namesLoader(int file, const Elf64_Ehdr& header) {
  for (int i = 0; i < header.e_phnum; ++i) {
    Elf64_Phdr segment{};
    const auto place = static_cast<off_t>(header.e_phoff + static_cast<Elf64_Off>(i) * header.e_phentsize);
    if (pread(file, &segment, sizeof segment, place) != sizeof segment) {
      return false;
    }
    if (segment.p_type == PT_INTERP) {
      return true;
    }
  }
  return false;
}

const char* whyNotLoaded(int file, const Elf64_Ehdr& header) {
  if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_machine != EM_X86_64) {
    return "is no program for this machine";
  }
  return namesLoader(file, header) ? nullptr : "is static: the loader has no part in it";
}

/// Puts a script's interpreter in the script's place. @return Whether it is a script.
bool toInterpreter(char* path, char* head, std::size_t length) {
  if (length < 2 || std::memcmp(head, "#!", 2) != 0) {
    return false;
  }
  head[length] = '\0';
  const char* begin = head + 2 + std::strspn(head + 2, " \t");
  const std::size_t size = std::strcspn(begin, " \t\r\n");
  std::memcpy(path, begin, size);
  path[size] = '\0';
  return true;
}

/// One step. @return Whether an interpreter stands in the path now, which is to be judged.
bool judgeFile(int file, Unobservable& program) {
  union {
    Elf64_Ehdr header;
    char bytes[256];
  } head{};
  const ssize_t length = read(file, head.bytes, sizeof head.bytes - 1);
  if (length >= static_cast<ssize_t>(sizeof head.header) && std::memcmp(head.bytes, ELFMAG, SELFMAG) == 0) {
    program.reason = whyNotLoaded(file, head.header);
    return false;
  }
  return length > 0 && toInterpreter(program.path, head.bytes, static_cast<std::size_t>(length));
}

bool judgeOnce(Unobservable& program) {
  struct stat status {};
  if (stat(program.path, &status) != 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  if (changesRights(program.path, status)) {
    program.reason = "is set-user-ID, set-group-ID or has capabilities: the loader preloads nothing";
    return false;
  }
  const int file = open(program.path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) {
    return false;
  }
  const bool goesOn = judgeFile(file, program);
  close(file);
  return goesOn;
}

}  // namespace

Unobservable judgeProgram(const char* path) {
  Unobservable program;
  if (std::strlen(path) < sizeof program.path) {
    std::memcpy(program.path, path, std::strlen(path) + 1);
    for (int i = 0; i < INTERPRETERS_AT_MOST && judgeOnce(program); ++i) {
    }
  }
  return program;
}

}  // namespace vestra::intercept
